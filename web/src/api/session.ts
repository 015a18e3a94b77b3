// Who works on this page: login and logout, and what each user keeps with the server.
import { answerOf, caller, door, DoorError } from './door.js';
import { followCaller } from '../words/language.js';

/** Asks the server whose session this is. */
export async function findCaller(): Promise<void> {
  try {
    caller.value = await answerOf(door.GET('/api/v1/me'));
    followCaller(caller.value.language);
  } catch (error) {
    if (error instanceof DoorError && error.status === 401) caller.value = null;
    else throw error;
  }
}

export async function logIn(user: string, password: string): Promise<void> {
  caller.value = await answerOf(door.POST('/api/v1/login', { body: { user, password } }));
  followCaller(caller.value.language);
}

export async function logOut(): Promise<void> {
  await door.POST('/api/v1/logout');
  caller.value = null;
}
