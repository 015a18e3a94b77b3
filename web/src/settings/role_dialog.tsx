// Makes a role of one's own, by picking operations.
import { useState } from 'preact/hooks';
import { fill } from '../words/language.js';
import { addRole, type Role } from './access.js';
import { FormDialog } from './form_dialog.js';
import { operationsOf } from './roles.js';
import { words } from './words.js';

/** Operations that no role of one's own can have. */
const administratorsAlone = new Set(['ExecuteSQL', 'GetUploadDataByTab']);

interface Props {
  readonly roles: readonly Role[];
  readonly onDone: (text: string) => void;
  readonly onClose: () => void;
}

export function RoleDialog({ roles, onDone, onClose }: Props) {
  const [name, setName] = useState('');
  const [text, setText] = useState('');
  const [picked, setPicked] = useState<ReadonlySet<string>>(new Set());
  const all = operationsOf(roles).filter((operation) => !administratorsAlone.has(operation));
  const shown = all.filter((operation) => operation.toLowerCase().includes(text.trim().toLowerCase()));
  const startFrom = (from: string) => {
    const role = roles.find((known) => known.name === from);
    if (role) setPicked(new Set(role.operations.filter((operation) => !administratorsAlone.has(operation))));
  };
  const toggle = (operation: string) => setPicked((before) => {
    const after = new Set(before);
    if (!after.delete(operation)) after.add(operation);
    return after;
  });
  return (
    <FormDialog title={words.addRole} main={words.make} onClose={onClose} onSubmit={async () => {
      if (picked.size === 0) throw new Error(words.pickSome);
      await addRole({ name: name.trim(), operations: [...picked] });
      onDone(words.saved);
    }}>
      <label class="field">
        {words.name}
        <input required maxLength={60} autocomplete="off" value={name} onInput={(event) => setName(event.currentTarget.value)} />
      </label>
      <label class="field">
        {words.startFrom}
        <select onChange={(event) => startFrom(event.currentTarget.value)}>
          <option value="" />
          {roles.map((role) => <option key={role.name} value={role.name}>{role.name}</option>)}
        </select>
      </label>
      <fieldset>
        <legend>{fill(words.pickedCount, { count: picked.size })}</legend>
        <input type="search" aria-label={words.findOperation} placeholder={words.findOperation} value={text}
          onInput={(event) => setText(event.currentTarget.value)}
          onKeyDown={(event) => { if (event.key === 'Enter') event.preventDefault(); }} />
        <div class="picks" tabIndex={0} role="group" aria-label={words.operation}>
          {shown.map((operation) => (
            <label key={operation} class="row">
              <input type="checkbox" checked={picked.has(operation)} onChange={() => toggle(operation)} />
              {operation}
            </label>
          ))}
        </div>
      </fieldset>
    </FormDialog>
  );
}
