// Adds a user, or changes one.
import { useState } from 'preact/hooks';
import { caller } from '../api/door.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { addUser, changeUser, isSet, userLanguages, type Role, type User } from './access.js';
import { FormDialog } from './form_dialog.js';
import { PasswordField } from './users.js';
import { words } from './words.js';

interface Props {
  /** None to add one. */
  readonly user: User | undefined;
  readonly roles: readonly Role[];
  readonly onDone: (text: string) => void;
  readonly onClose: () => void;
}

export function UserDialog({ user, roles, onDone, onClose }: Props) {
  const [name, setName] = useState('');
  const [password, setPassword] = useState('');
  const [erpUser, setErpUser] = useState(user ? String(user.ErpUser) : '');
  const [role, setRole] = useState(user?.Role ?? '');
  const [language, setLanguage] = useState(user?.Language ?? 'CHS');
  const [sql, setSql] = useState(isSet(user?.SQL));
  const [active, setActive] = useState(!isSet(user?.Disabled));
  const own = user?.Name === caller.value?.user;
  const names = [...new Set([...roles.map((known) => known.name), ...(user ? [user.Role] : [])])];
  const submit = async () => {
    const told = { erpUser: Number(erpUser), role, language, sql };
    if (user) await changeUser(user.Name, own ? told : { ...told, disabled: !active });
    else await addUser({ ...told, name: name.trim(), password });
    onDone(words.saved);
  };
  return (
    <FormDialog title={user ? fill(words.changeOf, { name: user.Name }) : words.addUser} main={common.save}
      onSubmit={submit} onClose={onClose}>
      {!user && (
        <label class="field">
          {words.name}
          <input required maxLength={60} autocomplete="off" value={name} onInput={(event) => setName(event.currentTarget.value)} />
        </label>
      )}
      {!user && <PasswordField value={password} onInput={setPassword} />}
      <label class="field">
        {words.erpUser}
        <input type="number" required min={1} step={1} value={erpUser} aria-describedby="erp-help"
          onInput={(event) => setErpUser(event.currentTarget.value)} />
        <small id="erp-help">{words.erpUserHelp}</small>
      </label>
      <label class="field">
        {words.role}
        <select required value={role} onChange={(event) => setRole(event.currentTarget.value)}>
          <option value="" />
          {names.map((known) => <option key={known} value={known}>{known}</option>)}
        </select>
      </label>
      <label class="field">
        {words.language}
        <select value={language} onChange={(event) => setLanguage(event.currentTarget.value)}>
          {userLanguages.map((known) => <option key={known} value={known}>{known}</option>)}
        </select>
      </label>
      <label class="row">
        <input type="checkbox" checked={sql} onChange={(event) => setSql(event.currentTarget.checked)} />
        {words.maySql}
      </label>
      {user && !own && (
        <label class="row">
          <input type="checkbox" checked={active} onChange={(event) => setActive(event.currentTarget.checked)} />
          {words.mayLogIn}
        </label>
      )}
    </FormDialog>
  );
}
