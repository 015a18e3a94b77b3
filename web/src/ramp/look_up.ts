// Finds the parcels of the lines, and what they are expected to weigh.
import { useEffect, useRef, useState } from 'preact/hooks';
import { ask } from '../api/workbench.js';
import { wordsOf } from '../parts/problem.js';
import { groupBy } from '../scan/data.js';
import { expectedWeight } from '../scan/jobs.js';
import type { Known, Line, Parcel } from './lines.js';

const mostNumbers = 500;
/** Expected weights are asked one by one. */
const mostWeights = 50;
const atOnce = 6;
const pause = 300;

/** Asks for parcels in blocks. @param found takes each block's */
export async function findParcels(
  numbers: readonly string[], stop: AbortSignal, found: (parcels: ReadonlyMap<string, readonly Parcel[]>) => void,
): Promise<void> {
  for (let start = 0; start < numbers.length && !stop.aborted; start += mostNumbers) {
    const block = numbers.slice(start, start + mostNumbers);
    const byNumber = groupBy(await ask('parcels', { numbers: block }, stop), ({ FNumber }) => FNumber);
    if (!stop.aborted) found(new Map(block.map((number) => [number, byNumber.get(number) ?? []])));
  }
}

async function findWeights(orders: readonly number[], found: Map<number, number>, stop: AbortSignal): Promise<void> {
  const left = [...orders];
  const work = async () => {
    for (let order = left.pop(); order !== undefined && !stop.aborted; order = left.pop()) {
      found.set(order, await expectedWeight(order));
    }
  };
  await Promise.all(Array.from({ length: atOnce }, work));
}

/** What is known of the lines; it grows while it is asked for. */
export function useKnown(lines: readonly Line[]) {
  const [known, setKnown] = useState<Known>({ parcels: new Map(), weights: new Map() });
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(false);
  const [times, setTimes] = useState(0);
  const forget = useRef(false);
  const numbers = [...new Set(lines.flatMap(({ texts: { number, waybill } }) => [number, waybill]).filter(Boolean))];
  const wanted = numbers.join('\n');
  const weighed = lines.filter(({ texts }) => texts.weight).length;
  useEffect(() => {
    const stop = new AbortController();
    const parcels = new Map(forget.current ? [] : known.parcels);
    const weights = new Map(forget.current ? [] : known.weights);
    forget.current = false;
    const ask = async () => {
      await findParcels(numbers.filter((number) => !parcels.has(number)), stop.signal, (block) => {
        block.forEach((found, number) => parcels.set(number, found));
        setKnown({ parcels, weights });
      });
      if (lines.length <= mostWeights) {
        const found = lines.filter(({ texts }) => texts.weight).flatMap(({ texts }) => parcels.get(texts.number) ?? []);
        await findWeights(found.map(({ FID }) => FID).filter((key) => !weights.has(key)), weights, stop.signal);
        if (!stop.signal.aborted) setKnown({ parcels, weights });
      }
    };
    setWrong('');
    setBusy(numbers.length > 0);
    const timer = setTimeout(() => {
      ask().catch((error: unknown) => stop.signal.aborted || setWrong(wordsOf(error)))
        .finally(() => stop.signal.aborted || setBusy(false));
    }, pause);
    return () => {
      clearTimeout(timer);
      stop.abort();
    };
  }, [wanted, weighed, times]);
  /** Asks anew for all. */
  const again = () => {
    forget.current = true;
    setTimes((before) => before + 1);
  };
  return { known, wrong, busy, count: numbers.length, again };
}
