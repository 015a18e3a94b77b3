// What each role may call.
import { useState } from 'preact/hooks';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { say } from '../parts/toasts.js';
import { linkTo } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { askRoles, removeRole, type Role } from './access.js';
import { FormDialog } from './form_dialog.js';
import { RoleDialog } from './role_dialog.js';
import { words } from './words.js';

/** All operations that some role has, as the administrator's does. */
export function operationsOf(roles: readonly Role[]): string[] {
  return [...new Set(roles.flatMap(({ operations }) => operations))].sort((a, b) => a.localeCompare(b));
}

export function Roles() {
  const roles = useLoaded('', askRoles);
  const [text, setText] = useState('');
  const [adding, setAdding] = useState(false);
  const [removing, setRemoving] = useState('');
  const done = (said: string) => {
    setAdding(false);
    setRemoving('');
    say('good', said);
    roles.again();
  };
  return (
    <>
      <div class="row">
        <button type="button" class="main" disabled={!roles.data} onClick={() => setAdding(true)}>{words.addRole}</button>
        <input type="search" aria-label={words.findOperation} placeholder={words.findOperation} value={text}
          onInput={(event) => setText(event.currentTarget.value)} />
      </div>
      <LoadNote of={roles} />
      {roles.data && <RoleTable roles={roles.data} text={text} onRemove={setRemoving} />}
      {adding && roles.data && <RoleDialog roles={roles.data} onDone={done} onClose={() => setAdding(false)} />}
      {removing && (
        <FormDialog title={fill(words.removeOf, { name: removing })} main={words.remove} onClose={() => setRemoving('')}
          onSubmit={async () => {
            await removeRole(removing);
            done(words.removed);
          }}>
          <p>{words.removeRoleAsk}</p>
        </FormDialog>
      )}
    </>
  );
}

function RoleTable({ roles, text, onRemove }: {
  roles: readonly Role[]; text: string; onRemove: (name: string) => void;
}) {
  const shown = operationsOf(roles).filter((name) => name.toLowerCase().includes(text.trim().toLowerCase()));
  return (
    <div class="scrolls roles" tabIndex={0} role="region" aria-label={words.roles}>
      <table>
        <thead>
          <tr>
            <th scope="col">{words.operation}</th>
            {roles.map(({ name, builtIn }) => (
              <th key={name} scope="col">
                {name}
                {!builtIn && (
                  <button type="button" aria-label={fill(words.removeOf, { name })} onClick={() => onRemove(name)}>×</button>
                )}
              </th>
            ))}
          </tr>
        </thead>
        <tbody>
          {shown.map((operation) => (
            <tr key={operation}>
              <th scope="row">{operation}</th>
              {roles.map(({ name, operations }) => (
                <td key={name}>
                  {operations.includes(operation) && <><span aria-hidden="true">✓</span><span class="hidden">{common.yes}</span></>}
                </td>
              ))}
            </tr>
          ))}
        </tbody>
      </table>
      {shown.length === 0 && <p class="quiet">{common.nothing}</p>}
      <p class="quiet">{words.rolesNote} <a href={linkTo('console')}>{common.console}</a></p>
    </div>
  );
}
