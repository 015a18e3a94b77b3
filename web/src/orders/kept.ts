// What a user keeps from one day to the next. It lies on this machine, under the user's name.
import { caller } from '../api/door.js';

function nameOf(name: string): string {
  return `tessarlorn.${caller.value?.user ?? ''}.${name}`;
}

export function kept<Value>(name: string): Value | undefined {
  const text = localStorage.getItem(nameOf(name));
  if (!text) return undefined;
  try {
    return JSON.parse(text) as Value;
  } catch {
    return undefined;
  }
}

/** @param value none takes it away */
export function keep(name: string, value: unknown): void {
  if (value === undefined) localStorage.removeItem(nameOf(name));
  else localStorage.setItem(nameOf(name), JSON.stringify(value));
}
