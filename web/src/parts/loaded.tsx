// What a screen asks for when it opens: it comes, it fails and can be asked for again, or it is still on its way.
import { useEffect, useState } from 'preact/hooks';
import { common } from '../words/common.js';
import { wordsOf } from './problem.js';

export interface Loaded<Data> {
  /** The last that came; it stays while it is asked for again. */
  readonly data: Data | undefined;
  readonly wrong: string;
  readonly busy: boolean;
  readonly again: () => void;
}

/** @param name of what is asked for; another one has it asked for anew */
export function useLoaded<Data>(name: string, load: (stop: AbortSignal) => Promise<Data>): Loaded<Data> {
  const [found, setFound] = useState<{ name: string; data: Data }>();
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(true);
  const [times, setTimes] = useState(0);
  useEffect(() => {
    const stop = new AbortController();
    setBusy(true);
    setWrong('');
    load(stop.signal).then((data) => {
      if (stop.signal.aborted) return;
      setFound({ name, data });
      setBusy(false);
    }, (error: unknown) => {
      if (stop.signal.aborted) return;
      setWrong(wordsOf(error));
      setBusy(false);
    });
    return () => stop.abort();
  }, [name, times]);
  const data = found?.name === name ? found.data : undefined;
  return { data, wrong, busy, again: () => setTimes((before) => before + 1) };
}

/** What is said as long as it is not there. */
export function LoadNote({ of: { data, wrong, busy, again } }: { of: Loaded<unknown> }) {
  return (
    <>
      <p role="status" class={busy && !data ? 'quiet' : 'hidden'}>{busy && !data && common.loading}</p>
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={again}>{common.retry}</button>
        </div>
      )}
    </>
  );
}
