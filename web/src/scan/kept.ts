// Signals whose values stay on this machine.
import { effect, signal, type Signal } from '@preact/signals';

function read<T>(name: string, otherwise: T): T {
  try {
    const text = localStorage.getItem(name);
    return text === null ? otherwise : (JSON.parse(text) as T);
  } catch {
    return otherwise;
  }
}

export function keptSignal<T>(name: string, otherwise: T): Signal<T> {
  const value = signal(read(name, otherwise));
  let first = true;
  effect(() => {
    const text = JSON.stringify(value.value);
    if (!first) localStorage.setItem(name, text);
    first = false;
  });
  return value;
}
