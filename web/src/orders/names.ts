// The numbers of orders, by their keys, for lists of what becomes of them.
import { useRef } from 'preact/hooks';
import { askRows } from '../api/workbench.js';
import { textOf, type Row } from './row.js';

const mostKeys = 500;

/** The rows of any number of orders, locked ones too, in the order of the keys. */
export async function allRows(keys: readonly number[]): Promise<Row[]> {
  const found = new Map<number, Row>();
  for (let at = 0; at < keys.length; at += mostKeys) {
    for (const row of await askRows(keys.slice(at, at + mostKeys))) found.set(row.FID, row);
  }
  return keys.flatMap((key) => found.get(key) ?? []);
}

/** Asks for the numbers that are not known yet. */
export function useNames(): (keys: readonly number[]) => Promise<(key: number) => string> {
  const known = useRef(new Map<number, string>());
  return async (keys) => {
    const rows = await allRows(keys.filter((key) => !known.current.has(key)));
    for (const row of rows) known.current.set(row.FID, textOf(row, 'FOrderID'));
    return (key) => known.current.get(key) ?? String(key);
  };
}
