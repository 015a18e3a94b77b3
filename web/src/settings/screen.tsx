// Settings: who may work here and how, and the switches of the ERP.
import { linkTo, route } from '../shell/route.js';
import { common } from '../words/common.js';
import { Roles } from './roles.js';
import { Switches } from './switches.js';
import { Tokens } from './tokens.js';
import { Users } from './users.js';
import { words } from './words.js';
import './settings.css';

const parts = { users: Users, tokens: Tokens, roles: Roles, switches: Switches } as const;
type Part = keyof typeof parts;
const names = Object.keys(parts) as Part[];

export function SettingsScreen() {
  const said = route.value.path[1] ?? names[0];
  const here = names.find((name) => name === said);
  const Shown = here && parts[here];
  return (
    <div class="settings stack">
      <h1>{common.settings}</h1>
      <nav class="tabs" aria-label={words.parts}>
        {names.map((name) => (
          <a key={name} href={linkTo(`settings/${name}`)} aria-current={name === here ? 'page' : undefined}>{words[name]}</a>
        ))}
      </nav>
      {Shown ? <Shown key={here} /> : <p class="note warn">{words.noPart}</p>}
    </div>
  );
}
