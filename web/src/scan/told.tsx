// What the last scan came to: a sound, a colour, and words that are read out.
import { signal } from '@preact/signals';
import { wordsOf } from '../parts/problem.js';
import { soundRight, soundWrong } from './sounds.js';
import { words } from './words.js';

interface Told {
  readonly kind: 'good' | 'bad' | 'warn';
  readonly text: string;
  /** Counts what was told, so that the same words are read out again. */
  readonly turn: number;
}

export const told = signal<Told | undefined>(undefined);
const marks = { good: '✓', warn: '!', bad: '✗' } as const;

export function tell(kind: Told['kind'], text: string): void {
  told.value = { kind, text, turn: (told.value?.turn ?? 0) + 1 };
  if (kind === 'good') soundRight();
  else soundWrong();
}

export function tellError(error: unknown): void {
  tell('bad', wordsOf(error));
}

/** @param ready what stands there while nothing was told */
export function ToldNote({ ready }: { ready?: string }) {
  const now = told.value;
  return (
    <div class="told" role="status" aria-live="assertive">
      {!now && ready && <p class="note">{ready}</p>}
      {now && (
        <p key={now.turn} class={`note ${now.kind}`}>
          <span aria-hidden="true">{marks[now.kind]} </span>
          <span class="hidden">{now.kind === 'good' ? words.right : words.wrong}: </span>
          {now.text}
        </p>
      )}
    </div>
  );
}
