// Saves all entries that match, told how far it is.
import { useEffect, useRef, useState } from 'preact/hooks';
import { saveTable } from '../parts/csv.js';
import { say, sayError } from '../parts/toasts.js';
import { fill } from '../words/language.js';
import { askAll, mostSaved } from './entries.js';
import { nameOf } from './names.js';
import { words } from './words.js';

export function SaveLog({ query }: { query: URLSearchParams }) {
  const [count, setCount] = useState<number>();
  const stop = useRef(new AbortController());
  const left = useRef(false);
  useEffect(() => () => {
    left.current = true;
    stop.current.abort();
  }, []);
  const save = async () => {
    stop.current = new AbortController();
    setCount(0);
    try {
      const { lines, whole } = await askAll(query, stop.current.signal, setCount);
      if (left.current) return;
      const heads = [
        words.key, words.when, words.order, 'FEntryID', words.kind, words.what, words.who, words.address, words.old, words.new,
      ];
      saveTable('log', heads, lines.map((line) => [
        line.FKey, line.FTime ?? '', line.FOrderID || line.FOrder, line.FEntryID, line.FKind, nameOf(line), line.FUserName,
        line.FAddress, line.FOldValue, line.FNewValue,
      ]));
      say(whole ? 'good' : 'warn', fill(whole ? words.saved : words.savedSome, { count: lines.length }));
    } catch (error) {
      sayError(error);
    } finally {
      setCount(undefined);
    }
  };
  if (count === undefined) return <button type="button" onClick={() => void save()}>{words.save}</button>;
  return (
    <div class="row">
      <label class="row">
        <span role="status">{fill(words.saving, { count, most: mostSaved })}</span>
        <progress value={count} max={mostSaved} />
      </label>
      <button type="button" onClick={() => stop.current.abort()}>{words.stop}</button>
    </div>
  );
}
