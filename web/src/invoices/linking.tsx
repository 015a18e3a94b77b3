// Finds the orders that are to be linked to an invoice, by numbers that are pasted or scanned.
import { useState } from 'preact/hooks';
import { readTable } from '../parts/csv.js';
import { Pasted, withLine } from '../parts/pasted.js';
import { wordsOf } from '../parts/problem.js';
import { findParcels } from '../ramp/look_up.js';
import { useScans } from '../scan/scanner.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

interface Found {
  readonly names: ReadonlyMap<number, string>;
  readonly unknown: readonly string[];
  readonly several: readonly string[];
}

async function find(text: string): Promise<Found> {
  const numbers = [...new Set(readTable(text).map((row) => row[0] ?? '').filter(Boolean))];
  const names = new Map<number, string>();
  const unknown: string[] = [];
  const several: string[] = [];
  await findParcels(numbers, new AbortController().signal, (block) => block.forEach((parcels, number) => {
    const [parcel] = parcels;
    if (!parcel) unknown.push(number);
    else if (parcels.length > 1) several.push(number);
    else names.set(parcel.FID, parcel.FOrderID);
  }));
  return { names, unknown, several };
}

export function Linking({ onFound }: { onFound: (names: ReadonlyMap<number, string>) => void }) {
  const [text, setText] = useState('');
  const [found, setFound] = useState<Found>();
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(false);
  useScans((code) => setText((before) => withLine(before, code)));
  const look = () => {
    setWrong('');
    setBusy(true);
    find(text).then((some) => {
      setFound(some);
      if (some.names.size) onFound(some.names);
    }, (error: unknown) => setWrong(wordsOf(error))).finally(() => setBusy(false));
  };
  return (
    <section class="stack">
      <Pasted label={words.numbers} hint={words.hint} text={text} onText={setText} />
      <div class="row">
        <button type="button" disabled={!text.trim() || busy} onClick={look}>{words.check}</button>
      </div>
      <div role="status" class="stack">
        {found && found.unknown.length > 0 && (
          <p class="note warn">{fill(words.unknown, { numbers: found.unknown.join(', ') })}</p>
        )}
        {found && found.several.length > 0 && (
          <p class="note warn">{fill(words.several, { numbers: found.several.join(', ') })}</p>
        )}
        {found && !found.names.size && <p>{words.nothing}</p>}
      </div>
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={look}>{common.retry}</button>
        </div>
      )}
    </section>
  );
}
