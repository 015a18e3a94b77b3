// The users who may log in, and whom of the ERP each stands for.
import { useState } from 'preact/hooks';
import { caller } from '../api/door.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { say } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { fill, formatTime } from '../words/language.js';
import { askRoles, askUsers, changeUser, isSet, removeUser, type User } from './access.js';
import { FormDialog } from './form_dialog.js';
import { UserDialog } from './user_dialog.js';
import { words } from './words.js';

type Open = { readonly what: 'change' | 'password' | 'disable' | 'remove'; readonly user: User } | { readonly what: 'add' };

export function Users() {
  const users = useLoaded('', askUsers);
  const roles = useLoaded('', askRoles);
  const [open, setOpen] = useState<Open>();
  const close = () => setOpen(undefined);
  const done = (text: string) => {
    close();
    say('good', text);
    users.again();
  };
  return (
    <>
      <div class="row"><button type="button" class="main" onClick={() => setOpen({ what: 'add' })}>{words.addUser}</button></div>
      <LoadNote of={users} />
      {users.data?.length === 0 && <p class="quiet">{common.nothing}</p>}
      {users.data && users.data.length > 0 && <UserTable users={users.data} onOpen={setOpen} />}
      {(open?.what === 'add' || open?.what === 'change') && (
        <UserDialog user={open.what === 'change' ? open.user : undefined} roles={roles.data ?? []} onDone={done}
          onClose={close} />
      )}
      {open?.what === 'password' && <PasswordDialog user={open.user} onDone={done} onClose={close} />}
      {open?.what === 'disable' && (
        <FormDialog title={fill(words.disableOf, { name: open.user.Name })} main={words.disable} onClose={close}
          onSubmit={async () => {
            await changeUser(open.user.Name, { disabled: true });
            done(words.saved);
          }}>
          <p>{words.disableAsk}</p>
        </FormDialog>
      )}
      {open?.what === 'remove' && (
        <FormDialog title={fill(words.removeOf, { name: open.user.Name })} main={words.remove} onClose={close}
          onSubmit={async () => {
            await removeUser(open.user.Name);
            done(words.removed);
          }}>
          <p>{words.removeUserAsk}</p>
        </FormDialog>
      )}
    </>
  );
}

function UserTable({ users, onOpen }: { users: readonly User[]; onOpen: (open: Open) => void }) {
  return (
    <div class="scrolls" tabIndex={0} role="region" aria-label={words.users}>
      <table>
        <thead>
          <tr>
            <th>{words.name}</th><th>{words.role}</th><th class="number">{words.erpUser}</th><th>{words.language}</th>
            <th>{words.sql}</th><th class="number">{words.tokens}</th><th>{words.made}</th><th>{words.state}</th>
            <th><span class="hidden">{words.actions}</span></th>
          </tr>
        </thead>
        <tbody>{users.map((user) => <UserRow key={user.Name} user={user} onOpen={onOpen} />)}</tbody>
      </table>
    </div>
  );
}

function UserRow({ user, onOpen }: { user: User; onOpen: (open: Open) => void }) {
  const disabled = isSet(user.Disabled);
  const own = user.Name === caller.value?.user;
  const button = (what: 'change' | 'password' | 'disable' | 'remove', text: string) => (
    <button type="button" aria-label={`${text}: ${user.Name}`} onClick={() => onOpen({ what, user })}>{text}</button>
  );
  return (
    <tr>
      <td><b>{user.Name}</b>{own && <span class="quiet"> {words.you}</span>}</td>
      <td>{user.Role}</td><td class="number">{user.ErpUser}</td><td>{user.Language}</td>
      <td>{isSet(user.SQL) ? common.yes : ''}</td><td class="number">{user.Tokens}</td>
      <td>{formatTime(user.Made, 'date')}</td>
      <td>{disabled ? words.disabled : words.active}</td>
      <td>
        <div class="row buttons">
          {button('change', words.change)}
          {button('password', words.newPassword)}
          {!own && !disabled && button('disable', words.disable)}
          {!own && button('remove', words.remove)}
        </div>
      </td>
    </tr>
  );
}

function PasswordDialog({ user, onDone, onClose }: {
  user: User; onDone: (text: string) => void; onClose: () => void;
}) {
  const [password, setPassword] = useState('');
  return (
    <FormDialog title={fill(words.passwordOf, { name: user.Name })} main={common.save} onClose={onClose}
      onSubmit={async () => {
        await changeUser(user.Name, { password });
        onDone(words.saved);
      }}>
      <PasswordField value={password} onInput={setPassword} />
      <p class="quiet">{words.passwordNote}</p>
    </FormDialog>
  );
}

export function PasswordField({ value, onInput }: { value: string; onInput: (text: string) => void }) {
  return (
    <label class="field">
      {words.password}
      <input type="password" autocomplete="new-password" required minLength={8} value={value}
        onInput={(event) => onInput(event.currentTarget.value)} />
    </label>
  );
}
