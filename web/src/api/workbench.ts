// What the page asks beyond the operations: keys of orders, counts, histories, choices.
import { answerOf, door } from './door.js';
import type { components, paths } from './schema.js';

type Path = Extract<keyof paths, `/api/v1/workbench/${string}`>;
/** The names of the questions. */
export type Question = Path extends `/api/v1/workbench/${infer Name}` ? Name : never;
type Post<Name extends Question> = paths[`/api/v1/workbench/${Name}`]['post'];
export type Asked<Name extends Question> = Post<Name>['requestBody'] extends
  { content: { 'application/json': infer Body } } | undefined ? Body : never;
/** A row of the list of orders. */
export type OrderRow = Record<string, string | number | null> & { FID: number };
export type Row<Name extends Question> = Name extends 'rows' ? OrderRow :
  Post<Name>['responses'][200]['content']['application/json']['result']['rows'][number];

/** The tabs of the list of orders. */
export const tabs = ['toBePicked', 'toBeDelivered', 'delivered', 'failedUploads', 'refunds', 'locked'] as const;
export type Tab = (typeof tabs)[number];

/** Which orders, and in which order. Dates are as 2026-11-22 or 2026-11-22T13:45:00. */
export type OrderFilter = Omit<Asked<'orders'>, 'most'> & { tab?: Tab };
export type FoundOrder = components['schemas']['AskFindRow'];
export type HistoryLine = components['schemas']['AskHistoryRow'];
export type Choice = components['schemas']['AskChoicesRow'];

export async function ask<Name extends Question>(
  name: Name,
  asked: Asked<Name>,
  signal?: AbortSignal,
  /** For a question that changes orders: the same one with the same key is asked once. */
  key?: string,
): Promise<Row<Name>[]> {
  const headers = key ? { 'Idempotency-Key': key } : {};
  // The client's types cannot follow a name that is not known yet.
  const post = door.POST as (path: string, init: unknown) => Promise<{
    data?: { result: { rows: Row<Name>[] } };
    error?: unknown;
    response: Response;
  }>;
  const { result } = await answerOf(post(`/api/v1/workbench/${name}`, { body: asked, signal, headers }));
  return result.rows;
}

/** The rows of orders, locked ones too, in no certain order; at most 500. */
export async function askRows(keys: readonly number[], signal?: AbortSignal): Promise<OrderRow[]> {
  const unlocked = await ask('rows', { keys: [...keys] }, signal);
  const found = new Set(unlocked.map(({ FID }) => FID));
  const left = keys.filter((key) => !found.has(key));
  return left.length ? [...unlocked, ...await ask('rows', { keys: left, locked: true }, signal)] : unlocked;
}
