// A dialog over the page. Escape and its button close it; the focus goes back to where it was.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef } from 'preact/hooks';
import { common } from '../words/common.js';

export function Dialog(props: { title: string; onClose: () => void; children: ComponentChildren; wide?: boolean }) {
  const dialog = useRef<HTMLDialogElement>(null);
  const gone = useRef(false);
  useEffect(() => {
    const before = document.activeElement;
    const shown = dialog.current;
    shown?.showModal();
    return () => {
      gone.current = true;
      // What is behind it takes no focus as long as it stands.
      shown?.close();
      if (before instanceof HTMLElement) before.focus();
    };
  }, []);
  const close = () => gone.current || props.onClose();
  return (
    <dialog ref={dialog} aria-label={props.title} class={props.wide ? 'wide' : ''}
      onClose={close}>
      <div>
        <h2>{props.title}</h2>
        {props.children}
      </div>
    </dialog>
  );
}

/** The buttons that end a dialog's form. @param main what submits it */
export function FormEnd({ main, close = common.cancel, onClose }: { main: string; close?: string; onClose: () => void }) {
  return (
    <div class="row end">
      <button type="button" onClick={onClose}>{close}</button>
      <button class="main">{main}</button>
    </div>
  );
}
