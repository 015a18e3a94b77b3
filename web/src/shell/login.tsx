import { useState } from 'preact/hooks';
import { DoorError } from '../api/door.js';
import { logIn } from '../api/session.js';
import { wordsOf } from '../parts/problem.js';
import { words } from './words.js';
import { Choices } from './choices.js';

export function Login() {
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(false);
  const submit = async (event: SubmitEvent) => {
    event.preventDefault();
    const data = new FormData(event.currentTarget as HTMLFormElement);
    setBusy(true);
    try {
      await logIn(String(data.get('user')), String(data.get('password')));
    } catch (error) {
      setWrong(error instanceof DoorError && error.status === 401 ? words.wrongLogin : wordsOf(error));
      setBusy(false);
    }
  };
  return (
    <main class="login">
      <form onSubmit={submit}>
        <h1>{words.title}</h1>
        <label class="field">
          {words.user}
          <input name="user" autocomplete="username" required autofocus />
        </label>
        <label class="field">
          {words.password}
          <input name="password" type="password" autocomplete="current-password" required />
        </label>
        {wrong && <div class="note bad" role="alert">{wrong}</div>}
        <button class="main" disabled={busy}>{words.logIn}</button>
        <div class="row"><Choices /></div>
      </form>
    </main>
  );
}
