// A dialog over the page. Escape and its button close it; the focus goes back to where it was.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef } from 'preact/hooks';
import { common } from '../words/common.js';

export function Dialog(props: { title: string; onClose: () => void; children: ComponentChildren; wide?: boolean }) {
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => {
    const before = document.activeElement;
    dialog.current?.showModal();
    return () => (before instanceof HTMLElement ? before.focus() : undefined);
  }, []);
  return (
    <dialog ref={dialog} aria-label={props.title} class={props.wide ? 'wide' : ''}
      onClose={props.onClose} onCancel={props.onClose}>
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
