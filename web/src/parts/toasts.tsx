// Short messages at the edge of the page, read out by screen readers. They go by themselves, unless something is wrong.
import { signal } from '@preact/signals';
import { common } from '../words/common.js';
import { wordsOf } from './problem.js';

interface Toast {
  readonly id: number;
  readonly kind: 'good' | 'bad' | 'warn';
  readonly text: string;
  readonly action?: { readonly text: string; readonly run: () => void };
}

const shown = signal<readonly Toast[]>([]);
let last = 0;
const stays = 6000;

export function dismiss(id: number): void {
  shown.value = shown.value.filter((toast) => toast.id !== id);
}

export function say(kind: Toast['kind'], text: string, action?: Toast['action']): void {
  const id = ++last;
  shown.value = [...shown.value.slice(-3), { id, kind, text, ...(action ? { action } : {}) }];
  if (kind !== 'bad') setTimeout(() => dismiss(id), stays);
}

export function sayError(error: unknown): void {
  say('bad', wordsOf(error));
}

export function Toasts() {
  return (
    <div class="toasts" role="status" aria-live="polite">
      {shown.value.map(({ id, kind, text, action }) => (
        <div key={id} class={`note ${kind}`}>
          <span>{text}</span>
          <span class="row">
            {action && (
              <button type="button" onClick={() => { dismiss(id); action.run(); }}>{action.text}</button>
            )}
            <button type="button" aria-label={common.close} onClick={() => dismiss(id)}>×</button>
          </span>
        </div>
      ))}
    </div>
  );
}
