// What a user keeps from one day to the next, as columns and views: with the server, and a copy on this machine.
import { signal } from '@preact/signals';
import { sayError } from '../parts/toasts.js';
import { answerOf, caller, door, DoorError } from './door.js';

const pause = 400;

const values = signal<Readonly<Record<string, unknown>>>({});
const waiting = new Map<string, number>();

function copyName(user: string): string {
  return `tessarlorn.${user}.kept`;
}

/** Reads what a user keeps, before the page shows anything of it. */
export async function loadKept(user: string): Promise<void> {
  try {
    values.value = await answerOf(door.GET('/api/v1/kept'));
    localStorage.setItem(copyName(user), JSON.stringify(values.value));
  } catch (error) {
    values.value = JSON.parse(localStorage.getItem(copyName(user)) ?? '{}') as Record<string, unknown>;
    if (!(error instanceof DoorError && error.passing)) sayError(error);
  }
}

export function kept<Value>(name: string): Value | undefined {
  return values.value[name] as Value | undefined;
}

async function send(name: string): Promise<void> {
  const params = { path: { name } };
  const value = values.value[name];
  const { error, response } = value === undefined
    ? await door.DELETE('/api/v1/kept/{name}', { params })
    : await door.PUT('/api/v1/kept/{name}', { params, body: value });
  if (error) throw new DoorError(response.status, error);
}

/** @param value none takes it away */
export function keep(name: string, value: unknown): void {
  const { [name]: _, ...rest } = values.value;
  values.value = value === undefined ? rest : { ...rest, [name]: value };
  if (caller.value) localStorage.setItem(copyName(caller.value.user), JSON.stringify(values.value));
  // A column that is being sized changes many times a second.
  clearTimeout(waiting.get(name));
  waiting.set(name, window.setTimeout(() => void send(name).catch(sayError), pause));
}
