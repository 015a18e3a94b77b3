// The entries that the link asks for, a page after the other.
import { ask, type Asked, type Row } from '../api/workbench.js';

export type LogLine = Row<'log'>;

export const page = 500;
/** As many as one file gets. */
export const mostSaved = 20_000;

/** What one can filter by, as it stands in the link. */
export const filters = ['from', 'to', 'user', 'code', 'field', 'number'] as const;
export type Filter = (typeof filters)[number];

function askedFor(query: URLSearchParams): Asked<'log'> {
  const values = filters.flatMap((name): [string, unknown][] => {
    const text = query.get(name)?.trim();
    return text ? [[name, name === 'user' || name === 'code' ? Number(text) : text]] : [];
  });
  return Object.fromEntries(values);
}

/** @param last the last entry that is there; the page behind it is asked for */
export function askPage(query: URLSearchParams, last: LogLine | undefined, signal?: AbortSignal): Promise<LogLine[]> {
  const before = last && { beforeTime: last.FTime ?? '', beforeKind: last.FKind, beforeKey: last.FKey };
  return ask('log', { ...askedFor(query), most: page, ...before }, signal);
}

/** All that match, up to as many as a file gets. What came before it was stopped is answered as well. */
export async function askAll(
  query: URLSearchParams, signal: AbortSignal, onPage: (count: number) => void,
): Promise<{ lines: LogLine[]; whole: boolean }> {
  const lines: LogLine[] = [];
  while (lines.length < mostSaved && !signal.aborted) {
    const next = await askPage(query, lines[lines.length - 1], signal).catch((error: unknown) => {
      if (!signal.aborted) throw error;
      return [];
    });
    lines.push(...next);
    onPage(lines.length);
    if (next.length < page && !signal.aborted) return { lines, whole: true };
  }
  return { lines, whole: false };
}
