// The parcel on the desk, and what is written when it is done.
import { signal } from '@preact/signals';
import { answerOf, caller, door, DoorError, newKey } from '../api/door.js';
import { beforeOf, deviation, expectedWeight, orderOf, rowOf, whatStops, type Before, type Row } from '../scan/jobs.js';
import { keptSignal } from '../scan/kept.js';
import { noteDone, noteUndone, type Done } from '../scan/shift.js';
import { tell, tellError } from '../scan/told.js';
import { drop, write } from '../scan/waiting.js';
import { fill, formatNumber } from '../words/language.js';
import { words } from './words.js';

export type Line = Record<string, string | number | null>;

export interface Parcel {
  /** What was scanned. */
  readonly number: string;
  /** Made at the scan; the keys of its writes begin with it. */
  readonly key: string;
  /** What the server knows of it; nothing while it could not be asked. */
  readonly found?: {
    readonly order: number;
    readonly row: Row;
    readonly lines: readonly Line[];
    readonly expected: number;
    readonly before: Before;
  };
  /** Why it may not go. */
  readonly why: string;
  readonly weight?: number;
}

export const parcel = signal<Parcel | undefined>(undefined);
/** A weight that is far from what was expected. */
export const asked = signal<number | undefined>(undefined);
/** Whether a parcel is being looked up. */
export const looking = signal(false);
export const tolerance = keptSignal('tessarlorn.tolerance', 10);

/** Whether parcels have to be weighed here; asked once. */
let mustWeigh: boolean | undefined;
const ready = 6;

async function askMustWeigh(): Promise<void> {
  if (mustWeigh === undefined) mustWeigh = (await answerOf(door.GET('/api/v1/clsGetData/bIsWeightting'))).result;
}

export function nameOf(some: Parcel): string {
  return String(some.found?.row['FOrderID'] ?? some.number);
}

export function kilograms(weight: number): string {
  return formatNumber(weight, 3);
}

async function linesOf(order: number): Promise<Line[]> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetEntryData', {
    body: { dctParameters: { FID: order } },
  }));
  return (result?.rows ?? []) as Line[];
}

async function open(number: string): Promise<void> {
  const key = newKey();
  looking.value = true;
  try {
    await askMustWeigh();
    const order = await orderOf(number);
    const [row, lines, expected, { why }] = await Promise.all([
      rowOf(order), linesOf(order), expectedWeight(order), whatStops([order], ready),
    ]);
    const before = beforeOf(row);
    parcel.value = { number, key, found: { order, row, lines, expected, before }, why };
    const name = nameOf(parcel.value);
    if (why) tell('bad', fill(words.mayNotGo, { order: name, why }));
    else if (before.checked) tell('warn', fill(words.scannedAgain, { order: name }));
    else tell('good', fill(words.scanned, { order: name }));
  } catch (error) {
    if (!(error instanceof DoorError && error.status === 0)) return tellError(error);
    parcel.value = { number, key, why: '' };
    tell('warn', fill(words.blind, { number }));
  } finally {
    looking.value = false;
  }
}

/** Writes what was done with the parcel. @return whether the desk is free for the next one */
export function complete(): boolean {
  const now = parcel.value;
  if (!now) return true;
  const order = nameOf(now);
  const { found, key, weight } = now;
  if (!now.why) {
    if (weight === undefined && mustWeigh !== false) {
      tell('bad', fill(words.weighFirst, { order }));
      return false;
    }
    const done = { key, at: Date.now(), number: now.number, weight, name: order };
    if (found) {
      noteDone({ ...done, order: found.order, before: found.before, checked: !found.before.checked });
      const check = { kind: 'check', order: found.order } as const;
      if (!found.before.checked) write(check, fill(words.checkOf, { order }), `${key}-check`);
      if (weight !== undefined) {
        const job = { kind: 'weigh', order: found.order, weight, cost: found.before.cost, weighed: true } as const;
        write(job, fill(words.weightOf, { order }), `${key}-weigh`);
      }
    } else {
      noteDone({ ...done, checked: true });
      const job = { kind: 'parcel', number: now.number, weight, tolerance: tolerance.value } as const;
      write(job, fill(words.parcelOf, { number: now.number }), key);
    }
    if (found) tell('good', fill(words.completed, { order }));
    else tell('warn', fill(words.blind, { number: now.number }));
  }
  parcel.value = undefined;
  return true;
}

export function putAside(): void {
  if (!parcel.value) return;
  tell('warn', fill(words.aside, { order: nameOf(parcel.value) }));
  parcel.value = undefined;
}

export function takeWeight(weight: number): void {
  asked.value = undefined;
  if (!parcel.value) return;
  parcel.value = { ...parcel.value, weight };
  tell('good', fill(words.weighed, { weight: kilograms(weight) }));
}

function weigh(weight: number): void {
  const now = parcel.value;
  if (!now) return tell('bad', words.noParcel);
  if (now.why) return tell('bad', fill(words.mayNotGo, { order: nameOf(now), why: now.why }));
  if (weight <= 0) return tell('bad', words.badWeight);
  if (deviation(weight, now.found?.expected ?? 0) <= tolerance.value) return takeWeight(weight);
  tell('warn', words.deviates);
  asked.value = weight;
}

/** A number with few digits before the point is a weight; numbers of parcels are longer. */
const weightForm = /^(\d{1,4}(?:[.,]\d{1,4})?)\s*(?:kg)?$/i;

let work = Promise.resolve();

async function take(text: string): Promise<void> {
  if (asked.value !== undefined) return tell('bad', words.answerFirst);
  const weight = weightForm.exec(text)?.[1];
  if (weight) return weigh(Number(weight.replace(',', '.')));
  const same = [parcel.value?.number, parcel.value?.found?.row['FOrderID']].includes(text);
  if (complete() && !same) await open(text);
}

/** Takes a scan or what was typed; scans that come fast wait for each other. */
export function onScan(text: string): void {
  work = work.then(() => take(text)).catch(tellError);
}

/** Takes back what was done with a parcel, after the writes of it that still wait. */
export function undo(done: Done): void {
  const order = done.name ?? done.number;
  if (done.order === undefined || !done.before) {
    if (!drop(done.key)) return tell('bad', words.undoUnknown);
  } else {
    if (done.checked) write({ kind: 'uncheck', order: done.order }, fill(words.checkOf, { order }));
    const { order: FID, before } = done;
    if (done.weight !== undefined) write({ kind: 'weigh', order: FID, ...before }, fill(words.weightOf, { order }));
  }
  noteUndone(done.key);
  tell('good', fill(words.wasUndone, { order }));
}

let worker: string | undefined;

/** Another user than before begins with an empty desk. */
export function beginWith(): void {
  if (worker !== undefined && worker !== caller.value?.user) parcel.value = undefined;
  worker = caller.value?.user;
}
