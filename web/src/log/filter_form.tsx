// Which entries are shown. The link holds it.
import { useState } from 'preact/hooks';
import { useChoices } from '../orders/choices.js';
import { go } from '../shell/route.js';
import { common } from '../words/common.js';
import { filters, type Filter } from './entries.js';
import { codes, operationWords } from './names.js';
import { words } from './words.js';

export function FilterForm({ query }: { query: URLSearchParams }) {
  const [values, setValues] = useState(() => new URLSearchParams(query));
  const users = useChoices().filter(({ FKind }) => FKind === 'user');
  const set = (name: Filter) => (event: { currentTarget: { value: string } }) => {
    const wanted = new URLSearchParams(values);
    if (event.currentTarget.value) wanted.set(name, event.currentTarget.value);
    else wanted.delete(name);
    setValues(wanted);
  };
  const of = (name: Filter) => ({ 'value': values.get(name) ?? '', 'onInput': set(name) });
  const user = values.get('user') ?? '';
  return (
    <form class="filter" onSubmit={(event) => {
      event.preventDefault();
      go('log', values);
    }}>
      <label class="field">{words.from}<input type="datetime-local" step={1} {...of('from')} /></label>
      <label class="field">{words.to}<input type="datetime-local" step={1} {...of('to')} /></label>
      <label class="field">
        {words.user}
        <select {...of('user')}>
          <option value="">{common.all}</option>
          {user && !users.some(({ FID }) => String(FID) === user) && <option value={user}>{user}</option>}
          {users.map(({ FID, FName }) => <option key={FID} value={String(FID)}>{FName}</option>)}
        </select>
      </label>
      <label class="field">
        {words.what}
        <select {...of('code')}>
          <option value="">{common.all}</option>
          {codes.map((code) => <option key={code} value={code}>{operationWords(code)}</option>)}
        </select>
      </label>
      <label class="field">{words.field}<input placeholder="FWeight" autocomplete="off" {...of('field')} /></label>
      <label class="field">{words.number}<input autocomplete="off" {...of('number')} /></label>
      <div class="row">
        <button class="main">{words.apply}</button>
        {filters.some((name) => query.has(name)) && (
          <button type="button" onClick={() => go('log')}>{words.clear}</button>
        )}
      </div>
    </form>
  );
}
