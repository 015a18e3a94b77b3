// Which rows of a grid are selected, and what clicks and keys make of that.

export interface Selection {
  readonly keys: ReadonlySet<number>;
  /** The row from which a range is drawn. */
  readonly anchor: number;
}

export const nothingSelected: Selection = { keys: new Set(), anchor: 0 };

export function only(rows: readonly number[], at: number): Selection {
  return { keys: new Set(rows.slice(at, at + 1)), anchor: at };
}

export function toggled({ keys }: Selection, rows: readonly number[], at: number): Selection {
  const key = rows[at];
  const next = new Set(keys);
  if (key !== undefined && !next.delete(key)) next.add(key);
  return { keys: next, anchor: at };
}

export function rangeTo({ anchor }: Selection, rows: readonly number[], at: number): Selection {
  return { keys: new Set(rows.slice(Math.min(anchor, at), Math.max(anchor, at) + 1)), anchor };
}

export function everything(rows: readonly number[]): Selection {
  return { keys: new Set(rows), anchor: 0 };
}
