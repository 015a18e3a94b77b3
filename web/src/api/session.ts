// Who works on this page: login and logout, and what each user keeps with the server.
import { answerOf, caller, door, DoorError, lapsed, type Schemas } from './door.js';
import { loadKept } from './kept.js';
import { followCaller } from '../words/language.js';

async function enter(user: Schemas['Caller']): Promise<void> {
  await loadKept(user.user);
  caller.value = user;
  lapsed.value = false;
  followCaller(user.language);
}

/** Asks the server whose session this is. */
export async function findCaller(): Promise<void> {
  try {
    await enter(await answerOf(door.GET('/api/v1/me')));
  } catch (error) {
    if (error instanceof DoorError && error.status === 401) caller.value = null;
    else throw error;
  }
}

export async function logIn(user: string, password: string): Promise<void> {
  await enter(await answerOf(door.POST('/api/v1/login', { body: { user, password } })));
}

export async function logOut(): Promise<void> {
  await door.POST('/api/v1/logout');
  caller.value = null;
}
