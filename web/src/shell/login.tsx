// Who works here: asked at the begin, and again when the login has ended.
import { useEffect, useRef, useState } from 'preact/hooks';
import { DoorError } from '../api/door.js';
import { logIn } from '../api/session.js';
import { wordsOf } from '../parts/problem.js';
import { common } from '../words/common.js';
import { Choices } from './choices.js';
import { words } from './words.js';

function LoginForm({ user = '', title }: { user?: string; title: string }) {
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
    <form onSubmit={submit}>
      <h1>{title}</h1>
      <label class="field">
        {words.user}
        <input name="user" autocomplete="username" required autofocus={!user} defaultValue={user} />
      </label>
      <label class="field">
        {words.password}
        <input name="password" type="password" autocomplete="current-password" required autofocus={Boolean(user)} />
      </label>
      {wrong && <div class="note bad" role="alert">{wrong}</div>}
      <button class="main" disabled={busy}>{words.logIn}</button>
      <div class="row"><Choices /></div>
    </form>
  );
}

export function Login() {
  return <main class="login"><LoginForm title={words.title} /></main>;
}

/** Over what one was doing, when the login has ended meanwhile. */
export function LoginAgain({ user }: { user: string }) {
  const dialog = useRef<HTMLDialogElement>(null);
  useEffect(() => dialog.current?.showModal(), []);
  return (
    <dialog ref={dialog} class="login-again" aria-label={common.loggedOut} onCancel={(event) => event.preventDefault()}>
      <LoginForm user={user} title={common.loggedOut} />
    </dialog>
  );
}
