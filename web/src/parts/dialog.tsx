// A dialog over the page. Escape and its button close it; the focus goes back to where it was.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef } from 'preact/hooks';

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
