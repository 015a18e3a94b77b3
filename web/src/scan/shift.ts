// What this machine did with parcels in this shift. Kept, so that it can be taken back after a reload.
import { keptSignal } from './kept.js';
import type { Before } from './jobs.js';

export interface Done {
  /** The key of the scan; those of its writes begin with it. */
  readonly key: string;
  readonly at: number;
  readonly number: string;
  /** The order and what it was; not known while the server could not be asked. */
  readonly order?: number;
  readonly name?: string;
  readonly before?: Before;
  readonly weight: number | undefined;
  readonly checked: boolean;
  readonly undone?: boolean;
  /** A write of it was refused. */
  readonly refused?: boolean;
}

const most = 500;
const shiftHours = 16;

export const shift = keptSignal<readonly Done[]>('tessarlorn.shift', []);

/** Older work is of another shift. */
export function dropOld(now = Date.now()): void {
  shift.value = shift.value.filter(({ at }) => now - at < shiftHours * 3_600_000);
}

export function noteDone(done: Done): void {
  shift.value = [done, ...shift.value].slice(0, most);
}

function change(key: string, changed: Partial<Done>): void {
  shift.value = shift.value.map((done) => (done.key === key ? { ...done, ...changed } : done));
}

export function noteSent(key: string, found: { order: number; name: string; before: Before }): void {
  change(key, { ...found, checked: !found.before.checked });
}

export function noteUndone(key: string): void {
  change(key, { undone: true });
}

/** @param key of one of its writes */
export function noteRefused(key: string): void {
  const done = shift.value.find((some) => key.startsWith(some.key));
  if (done) change(done.key, { refused: true });
}
