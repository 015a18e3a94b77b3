// The list that was looked at last, so that an order's own screen can go on in it.
import { signal } from '@preact/signals';

interface List {
  readonly keys: readonly number[];
  /** Where the list stands. */
  readonly link: string;
}

export const lastList = signal<List>({ keys: [], link: '#/orders' });

/** The orders before and behind one in the list. */
export function neighbours(order: number): { before?: number; behind?: number; place: number } {
  const { keys } = lastList.value;
  const at = keys.indexOf(order);
  if (at < 0) return { place: 0 };
  const before = keys[at - 1];
  const behind = keys[at + 1];
  return { ...(before ? { before } : {}), ...(behind ? { behind } : {}), place: at + 1 };
}
