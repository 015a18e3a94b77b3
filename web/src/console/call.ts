// Makes the call of a form, and reads what came back.
import { door, DoorError, type Problem, type Schemas } from '../api/door.js';
import type { Operation } from './document.js';
import type { Body } from './form.js';

export const formats = { json: 'application/json', csv: 'text/csv', ndjson: 'application/x-ndjson' } as const;
export type Format = keyof typeof formats;

export interface Options {
  readonly dryRun: boolean;
  readonly each: boolean;
  readonly columns: string;
  readonly format: Format;
}

export interface Recordset {
  readonly fields: readonly Schemas['Field'][];
  readonly rows: readonly Schemas['Row'][];
}

export interface Answer {
  readonly result?: unknown;
  readonly arguments?: Readonly<Record<string, unknown>>;
  readonly orders?: readonly { readonly order: string; readonly result?: unknown; readonly problem?: Problem }[];
  readonly notFound?: readonly string[];
  readonly dryRun?: Schemas['DryRun'];
}

export interface Said {
  readonly status: number;
  readonly milliseconds: number;
  readonly request: string;
  /** Whether an earlier call with the same key was answered again. */
  readonly replayed: boolean;
  readonly answer?: Answer;
  /** The answer in another format than JSON. */
  readonly text?: string;
  readonly problem?: Problem;
}

export function queryOf(operation: Operation, { dryRun, each, columns }: Options): Record<string, string> {
  return {
    ...(dryRun ? { 'dry-run': 'true' } : {}),
    ...(each && operation.each ? { each: 'order' } : {}),
    ...(columns && operation.columns ? { columns } : {}),
  };
}

/** A dry run is answered as JSON only. */
export function formatOf({ dryRun, format }: Options): Format {
  return dryRun ? 'json' : format;
}

export function recordsetOf(result: unknown): Recordset | undefined {
  const { fields, rows } = (result ?? {}) as Partial<Recordset>;
  return Array.isArray(fields) && Array.isArray(rows) ? { fields, rows } : undefined;
}

/** @param key of a write that is kept; it is made once for each */
export async function makeCall(
  operation: Operation, body: Body, options: Options, key: string | undefined, signal: AbortSignal,
): Promise<Said> {
  // The client's types cannot follow a path that is not known yet.
  const post = door.POST as unknown as (path: string, init: unknown) => Promise<{
    data?: string;
    error?: unknown;
    response: Response;
  }>;
  const format = formatOf(options);
  const began = performance.now();
  const { data, error, response } = await post(`/api/v1/${operation.path}`, {
    signal, parseAs: 'text',
    ...(operation.arguments.length ? { body } : {}),
    params: { query: queryOf(operation, options) },
    headers: { Accept: formats[format], ...(key ? { 'Idempotency-Key': key } : {}) },
  });
  const problem = error as Problem | undefined;
  // What passes by itself, and a login that ended, are no answers of the operation.
  if (!response.ok && (!problem || response.status === 401 || new DoorError(response.status, problem).passing)) {
    throw new DoorError(response.status, problem);
  }
  const notFound = response.headers.get('X-Not-Found')?.split(',').map((order) => order.trim());
  const answer = !response.ok ? undefined : format === 'json' ? JSON.parse(data ?? '{}') as Answer : { notFound };
  return {
    status: response.status, milliseconds: Math.round(performance.now() - began),
    request: response.headers.get('X-Request-Id') ?? '',
    replayed: response.headers.get('Idempotency-Replayed') === 'true',
    ...(answer ? { answer: answer as Answer } : {}),
    ...(response.ok && format !== 'json' ? { text: data ?? '' } : {}),
    ...(problem ? { problem } : {}),
  };
}
