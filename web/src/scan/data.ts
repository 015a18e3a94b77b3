// Small helpers for rows.
import { ask } from '../api/workbench.js';
import type { Row } from './jobs.js';

export function groupBy<T, Key>(items: Iterable<T>, keyOf: (item: T) => Key): Map<Key, T[]> {
  const groups = new Map<Key, T[]>();
  for (const item of items) {
    const group = groups.get(keyOf(item));
    if (group) group.push(item);
    else groups.set(keyOf(item), [item]);
  }
  return groups;
}

const mostKeys = 500;

/** The orders' rows, in the order of the keys. */
export async function rowsOf(keys: readonly number[]): Promise<Row[]> {
  const found = new Map<number, Row>();
  for (let at = 0; at < keys.length; at += mostKeys) {
    for (const row of await ask('rows', { keys: keys.slice(at, at + mostKeys) })) found.set(row.FID, row);
  }
  return keys.map((key) => found.get(key)).filter((row) => row !== undefined);
}
