// The frame around the screens: who works, where one is, and what is wrong with the connection.
import type { ComponentType } from 'preact';
import { useEffect, useState } from 'preact/hooks';
import { caller, lapsed, reachable } from '../api/door.js';
import { findCaller, logOut } from '../api/session.js';
import { sayError, Toasts } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { language } from '../words/language.js';
import { Choices } from './choices.js';
import { FindOrder } from './find_order.js';
import { KeyList } from './key_list.js';
import { Login, LoginAgain } from './login.js';
import { Menu } from './menu.js';
import { Pull } from './pull.js';
import { route } from './route.js';
import { firstScreen, screens } from './screens.js';
import { words } from './words.js';

const retryAfter = 3000;

function Banner() {
  return reachable.value ? <div /> : <div class="note warn banner" role="alert">{common.unreachable}</div>;
}

function Shown({ name }: { name: string }) {
  const [screen, setScreen] = useState<{ name: string; Body: ComponentType }>();
  useEffect(() => {
    let left = false;
    screens[name]?.load().then((Body) => left || setScreen({ name, Body }), sayError);
    return () => {
      left = true;
    };
  }, [name]);
  if (!screens[name]) return <p class="note bad">{words.noSuchScreen}</p>;
  return screen?.name === name ? <screen.Body /> : null;
}

export function App() {
  useEffect(() => {
    let timer = 0;
    const ask = () => findCaller().catch(() => { timer = window.setTimeout(ask, retryAfter); });
    void ask();
    return () => clearTimeout(timer);
  }, []);
  document.documentElement.lang = language.value;
  if (caller.value === undefined) return <Banner />;
  if (caller.value === null) return <Login />;
  const here = route.value.path[0] ?? firstScreen;
  return (
    <div class="shell" key={caller.value.user}>
      <a class="skip" href="#work" onClick={(event) => { event.preventDefault(); document.getElementById('work')?.focus(); }}>
        {words.skip}
      </a>
      <header>
        <Menu here={here} />
        <FindOrder />
        <div class="own">
          <KeyList />
          <Pull title={caller.value.user}>
            <Choices />
            <button type="button" onClick={() => logOut().catch(sayError)}>{words.logOut}</button>
          </Pull>
        </div>
      </header>
      <Banner />
      <main id="work" tabIndex={-1}><Shown name={here} /></main>
      <Toasts />
      {lapsed.value && <LoginAgain user={caller.value.user} />}
    </div>
  );
}
