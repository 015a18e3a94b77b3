// What a screen asks for when it opens, and the note as long as it is not there.
import { useEffect, useState } from 'preact/hooks';
import { common } from '../words/common.js';
import { wordsOf } from './problem.js';

export interface Loaded<Value> {
  /** The last that came; it stays while newer is asked for. */
  readonly value: Value | undefined;
  readonly wrong: string;
  readonly again: () => void;
}

/** @param inputs what it depends on */
export function useLoaded<Value>(ask: (signal: AbortSignal) => Promise<Value>, inputs: readonly unknown[]): Loaded<Value> {
  const [value, setValue] = useState<Value>();
  const [wrong, setWrong] = useState('');
  const [times, setTimes] = useState(0);
  useEffect(() => {
    const asking = new AbortController();
    ask(asking.signal).then((found) => {
      if (asking.signal.aborted) return;
      setValue(() => found);
      setWrong('');
    }, (error: unknown) => asking.signal.aborted || setWrong(wordsOf(error)));
    return () => asking.abort();
  }, [...inputs, times]);
  return { value, wrong, again: () => setTimes((before) => before + 1) };
}

export function LoadNote({ loaded: { value, wrong, again } }: { loaded: Loaded<unknown> }) {
  if (wrong) {
    return (
      <div class="note bad row" role="alert">
        {wrong} <button type="button" onClick={again}>{common.retry}</button>
      </div>
    );
  }
  return value === undefined ? <p class="quiet" role="status">{common.loading}</p> : null;
}
