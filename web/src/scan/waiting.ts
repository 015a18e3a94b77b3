// Writes of scans on their way. Each lies in localStorage until the server has answered it, so that neither a lost
// connection nor a reload loses one. They go one by one, in the order in which they were made.
import { effect, signal } from '@preact/signals';
import { caller, newKey } from '../api/door.js';
import { wordsOf } from '../parts/problem.js';
import { again, send, type Job } from './jobs.js';
import { keptSignal } from './kept.js';
import { noteRefused } from './shift.js';

export interface Waiting {
  readonly key: string;
  /** The user of the door who made it; it is sent as the same one. */
  readonly by: string;
  readonly label: string;
  readonly job: Job;
}

/** A write that the server or the data refused. */
export interface Refused {
  readonly key: string;
  readonly label: string;
  readonly why: string;
}

const prefix = 'tessarlorn.waiting.';
const retryAfter = 3000;

/** Each write has an item of its own, so that two windows do not overwrite each other's. */
function readAll(): [name: string, waiting: Waiting][] {
  const names = Object.keys(localStorage).filter((name) => name.startsWith(prefix)).sort();
  return names.map((name) => [name, JSON.parse(localStorage.getItem(name)!) as Waiting]);
}

export const waiting = signal<readonly Waiting[]>(readAll().map(([, item]) => item));
export const refused = keptSignal<readonly Refused[]>('tessarlorn.refused', []);

function look(): void {
  waiting.value = readAll().map(([, item]) => item);
}

let turn = 0;
let sending = false;
let timer = 0;

async function sendAll(): Promise<void> {
  if (sending) return;
  sending = true;
  clearTimeout(timer);
  try {
    // Those of others who worked at this machine wait for their own login.
    const own = () => readAll().find(([, item]) => item.by === caller.value?.user);
    for (let next = own(); next; next = own()) {
      const [name, item] = next;
      const who = caller.value!;
      const keep = (job: Job) => localStorage.setItem(name, JSON.stringify({ ...item, job }));
      try {
        await send(item.job, { user: who.erpUser, key: item.key, keep });
      } catch (error) {
        if (again(error)) {
          timer = window.setTimeout(() => void sendAll(), retryAfter);
          break;
        }
        refused.value = [...refused.value, { key: item.key, label: item.label, why: wordsOf(error) }];
        noteRefused(item.key);
      }
      localStorage.removeItem(name);
      look();
    }
  } finally {
    sending = false;
    look();
  }
}

/** Sends a write now, or as soon as it can be. @param label what it is, in words, should it be refused */
export function write(job: Job, label: string, key = newKey()): void {
  const item: Waiting = { key, by: caller.value?.user ?? '', label, job };
  const order = `${String(Date.now()).padStart(15, '0')}.${String(++turn).padStart(6, '0')}`;
  localStorage.setItem(`${prefix}${order}.${key}`, JSON.stringify(item));
  look();
  void sendAll();
}

/** Drops a write that was not sent yet. @return whether there was one */
export function drop(key: string): boolean {
  const found = readAll().find(([, item]) => item.key === key);
  if (!found || sending) return false;
  localStorage.removeItem(found[0]);
  look();
  return true;
}

export function forget(key: string): void {
  refused.value = refused.value.filter((item) => item.key !== key);
}

addEventListener('online', () => void sendAll());
addEventListener('storage', look);
effect(() => {
  if (caller.value) void sendAll();
});
