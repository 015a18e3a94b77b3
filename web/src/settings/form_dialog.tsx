// A dialog that writes one thing: its form, what went wrong, and the same key as long as one tries again.
import type { ComponentChildren } from 'preact';
import { useRef, useState } from 'preact/hooks';
import { DoorError, newKey } from '../api/door.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';

interface Props {
  readonly title: string;
  readonly main: string;
  /** Writes, and closes the dialog when it went well. */
  readonly onSubmit: (key: string) => Promise<void>;
  readonly onClose: () => void;
  readonly children: ComponentChildren;
  readonly wide?: boolean;
}

export function FormDialog({ title, main, onSubmit, onClose, children, wide = false }: Props) {
  const [wrong, setWrong] = useState('');
  const key = useRef(newKey());
  const busy = useRef(false);
  const submit = async (event: SubmitEvent) => {
    event.preventDefault();
    if (busy.current) return;
    busy.current = true;
    setWrong('');
    try {
      await onSubmit(key.current);
    } catch (error) {
      setWrong(wordsOf(error));
      // What was refused is put right and sent as another call.
      if (!(error instanceof DoorError && error.passing)) key.current = newKey();
    } finally {
      busy.current = false;
    }
  };
  return (
    <Dialog title={title} onClose={onClose} wide={wide}>
      <form class="stack settings-form" onSubmit={submit}>
        {children}
        {wrong && <div class="note bad" role="alert">{wrong}</div>}
        <FormEnd main={main} onClose={onClose} />
      </form>
    </Dialog>
  );
}
