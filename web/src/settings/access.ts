// Who may call what: users, their tokens, and roles.
import { DoorError, type Problem } from '../api/door.js';
import { doorComing } from '../api/coming.js';

export interface User {
  readonly Name: string;
  readonly ErpUser: number;
  readonly Language: string;
  readonly Role: string;
  readonly SQL: unknown;
  readonly Disabled: unknown;
  readonly Tokens: number;
  readonly Made: string | null;
}

export interface Token {
  readonly User: string;
  readonly Token: string;
  readonly Made: string | null;
  readonly Expires: string | null;
  readonly Used: string | null;
  readonly Expired: unknown;
}

export interface Role {
  readonly name: string;
  readonly builtIn: boolean;
  readonly administrator: boolean;
  readonly operations: readonly string[];
}

export const userLanguages = ['CHS', 'CHT', 'EN'] as const;

/** Whether a mark of the lists is set, which come as a table for people too. */
export const isSet = (mark: unknown) => mark === true || mark === 1 || mark === 'yes';

type Method = keyof typeof doorComing;

/** A call whose answer may be empty. */
async function call<Data>(method: Method, path: string, body?: unknown, key?: string): Promise<Data> {
  const { data, error, response } = await doorComing[method](`/api/v1/${path}`, {
    ...(body === undefined ? {} : { body }), ...(key ? { headers: { 'Idempotency-Key': key } } : {}),
  });
  if (!response.ok) throw new DoorError(response.status, error as Problem | undefined);
  return data as Data;
}

const rowsOf = async <Row>(path: string) => (await call<{ result: { rows: Row[] } }>('GET', path)).result.rows;
const part = encodeURIComponent;

export const askUsers = () => rowsOf<User>('users');
export const addUser = (user: Record<string, unknown>, key: string) => call<unknown>('POST', 'users', user, key);
export const changeUser = (name: string, changes: Record<string, unknown>, key: string) => (
  call<unknown>('PATCH', `users/${part(name)}`, changes, key));
export const removeUser = (name: string, key: string) => call<unknown>('DELETE', `users/${part(name)}`, undefined, key);

export const askTokens = () => rowsOf<Token>('tokens');
export const addToken = (token: Record<string, unknown>, key: string) => (
  call<{ token: string }>('POST', 'tokens', token, key));
export const removeToken = ({ User, Token }: Token, key: string) => (
  call<unknown>('DELETE', `tokens/${part(User)}/${part(Token)}`, undefined, key));

export const askRoles = async () => (await call<{ roles: Role[] }>('GET', 'roles')).roles;
export const addRole = (name: string, operations: readonly string[], key: string) => (
  call<unknown>('POST', 'roles', { name, operations }, key));
export const removeRole = (name: string, key: string) => call<unknown>('DELETE', `roles/${part(name)}`, undefined, key);
