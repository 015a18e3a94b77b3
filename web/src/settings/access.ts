// Who may call what: users, their tokens, and roles.
import { answerOf, door, DoorError, type Problem, type Schemas } from '../api/door.js';

export type User = Schemas['UserList']['result']['rows'][number];
export type Token = Schemas['TokenList']['result']['rows'][number];
export type Role = Schemas['RoleList']['roles'][number];

export const userLanguages = ['CHS', 'CHT', 'EN'] as const;

/** Whether a mark of the lists is set, which come as a table for people too. */
export const isSet = (mark: unknown) => mark === true || mark === 1 || mark === 'yes';

/** A call that answers nothing. */
async function done(call: Promise<{ error?: unknown; response: Response }>): Promise<void> {
  const { error, response } = await call;
  if (!response.ok) throw new DoorError(response.status, error as Problem | undefined);
}

export const askUsers = async () => (await answerOf(door.GET('/api/v1/users'))).result.rows;
export const addUser = (body: Schemas['NewUser']) => answerOf(door.POST('/api/v1/users', { body }));
export const changeUser = (name: string, body: Schemas['UserChange']) => (
  done(door.PATCH('/api/v1/users/{name}', { params: { path: { name } }, body })));
export const removeUser = (name: string) => done(door.DELETE('/api/v1/users/{name}', { params: { path: { name } } }));

export const askTokens = async () => (await answerOf(door.GET('/api/v1/tokens'))).result.rows;
export const addToken = (body: Schemas['NewToken']) => answerOf(door.POST('/api/v1/tokens', { body }));
export const removeToken = ({ User: user, Token: name }: Token) => (
  done(door.DELETE('/api/v1/tokens/{user}/{name}', { params: { path: { user, name } } })));

export const askRoles = async () => (await answerOf(door.GET('/api/v1/roles'))).roles;
export const addRole = (body: Schemas['NewRole']) => answerOf(door.POST('/api/v1/roles', { body }));
export const removeRole = (name: string) => done(door.DELETE('/api/v1/roles/{name}', { params: { path: { name } } }));
