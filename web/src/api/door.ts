// The operations over HTTP, with the types of their description, and what went wrong with one in words.
import { signal } from '@preact/signals';
import createClient, { type Middleware } from 'openapi-fetch';
import type { components, paths } from './schema.js';

export type Problem = components['schemas']['Problem'];
export type Schemas = components['schemas'];

/** Raised for every answer that is none of the operation's own. */
export class DoorError extends Error {
  constructor(
    /** The status of HTTP, 0 when the server could not be reached. */
    readonly status: number,
    readonly problem: Problem | undefined,
  ) {
    super(problem?.detail ?? problem?.title ?? '');
  }
  /** Whether the same call may go well later. */
  get passing(): boolean {
    return [0, 429, 503, 504].includes(this.status);
  }
}

/** Whether the last request reached the server. */
export const reachable = signal(true);
/** Who is logged in; null when nobody is, undefined before that is known. */
export const caller = signal<Schemas['Caller'] | null | undefined>(undefined);

type Called = Extract<keyof paths, `/api/v1/cls${string}`>;
/** The names of the operations. */
export type OperationName = Called extends `/api/v1/${string}/${infer Name}` ? Name : never;

/** Whether whoever works here may call an operation. */
export function may(operation: OperationName): boolean {
  return caller.value?.operations.includes(operation) ?? false;
}

/** Whether the login of whoever works here has ended. What he typed stays. */
export const lapsed = signal(false);

const watch: Middleware = {
  onResponse({ response }) {
    reachable.value = true;
    if (response.status !== 401) return;
    if (caller.value) lapsed.value = true;
    else caller.value = null;
  },
  onError() {
    reachable.value = false;
    return new DoorError(0, undefined);
  },
};

export const door = createClient<paths, 'application/json' | 'application/problem+json'>({ baseUrl: '' });
door.use(watch);

/** The answer of a call, or its DoorError: `const { rows } = await answerOf(door.POST(...))`. */
export async function answerOf<Data>(
  call: Promise<{ data?: Data; error?: unknown; response: Response }>,
): Promise<NonNullable<Data>> {
  const { data, error, response } = await call;
  if (data === undefined || data === null || error !== undefined) {
    throw new DoorError(response.status, error as Problem | undefined);
  }
  return data;
}

/** A new value of the header Idempotency-Key. */
export function newKey(): string {
  // randomUUID is there over TLS and on this machine only.
  return [...crypto.getRandomValues(new Uint8Array(16))].map((byte) => byte.toString(16).padStart(2, '0')).join('');
}
