// The fields of an operation's form.
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import type { Argument, Field, Kind } from './document.js';
import { wrongIn, type Values } from './form.js';
import { words } from './words.js';

const kindWords = (kind: Kind) => ({
  text: words.kindText, keys: words.kindKeys, whole: words.kindWhole, decimal: words.kindDecimal,
  yesNo: words.kindYesNo, date: words.kindDate, list: words.kindList, entries: words.kindEntries,
})[kind];

interface Props {
  readonly values: Values;
  readonly onChange: (values: Values) => void;
}

export function ArgumentFields({ argument, ...props }: Props & { argument: Argument }) {
  const { name, dictionary, fields, writtenBack } = argument;
  if (!dictionary) return <OneField field={fields[0]!} writtenBack={writtenBack} {...props} />;
  return (
    <fieldset>
      <legend>{name} <span class="quiet">Dictionary</span></legend>
      {fields.map((field) => <OneField key={field.path} field={field} writtenBack={false} {...props} />)}
    </fieldset>
  );
}

function OneField({ field, values, onChange, writtenBack }: Props & { field: Field; writtenBack: boolean }) {
  const { path, kind, needed, fallback, keys } = field;
  const value = values[path] ?? '';
  const wrong = wrongIn(field, value);
  const set = (text: string) => onChange({ ...values, [path]: text });
  const about = [
    kindWords(kind), needed && words.needed, writtenBack && words.writtenBack,
    fallback && fill(words.fallback, { value: fallback }),
  ].filter(Boolean).join(', ');
  return (
    <div class="one">
      <label class="field">
        <span>
          <b>{path.split('.').pop()}</b>{needed && <span class="star" aria-hidden="true"> *</span>} <small>{about}</small>
        </span>
        <Input field={field} value={value} wrong={wrong} onInput={set} />
      </label>
      {field.help && <p id={`help-${path}`} class="quiet" lang="en">{field.help}</p>}
      {wrong && <p id={`wrong-${path}`} class="wrong" role="alert">{wrong}</p>}
      {keys.length > 0 && <ListKeys keys={keys} />}
    </div>
  );
}

function Input({ field, value, wrong, onInput }: {
  field: Field; value: string; wrong: string; onInput: (text: string) => void;
}) {
  const { path, kind } = field;
  const same = {
    'value': value, 'aria-describedby': `help-${path}${wrong ? ` wrong-${path}` : ''}`,
    'required': field.needed && kind !== 'text', 'autocomplete': 'off',
  };
  const typed = (event: { currentTarget: { value: string } }) => onInput(event.currentTarget.value);
  switch (kind) {
    case 'list':
    case 'entries':
      return (
        <textarea {...same} class="code" rows={6} spellcheck={false} aria-invalid={Boolean(wrong)} onInput={typed} />
      );
    case 'yesNo':
      return (
        <select {...same} onChange={typed}>
          <option value="" />
          <option value="true">{common.yes}</option>
          <option value="false">{common.no}</option>
        </select>
      );
    case 'date': return <input {...same} type="datetime-local" step={1} onInput={typed} />;
    case 'whole': return <input {...same} type="number" step={1} onInput={typed} />;
    case 'decimal': return <input {...same} type="number" step="any" onInput={typed} />;
    default: return <input {...same} spellcheck={false} onInput={typed} />;
  }
}

function ListKeys({ keys }: { keys: readonly Field[] }) {
  return (
    <details>
      <summary>{words.keysOf}</summary>
      <ul class="keys">
        {keys.map(({ path, kind, needed, help }) => (
          <li key={path}>
            <b>{path}</b> <small>{[kindWords(kind), needed && words.needed].filter(Boolean).join(', ')}</small>{' '}
            <span class="quiet" lang="en">{help}</span>
          </li>
        ))}
      </ul>
    </details>
  );
}
