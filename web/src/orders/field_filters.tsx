// Filters on any field of the template: those that an installation added among them.
import { useEffect, useState } from 'preact/hooks';
import { answerOf, door } from '../api/door.js';
import { sayError } from '../parts/toasts.js';
import { captionOf } from './columns.js';
import { words } from './words.js';

export interface Condition {
  readonly field: string;
  readonly comparison: string;
  readonly value: string;
}

interface TemplateField {
  readonly key: string;
  readonly caption: string;
}

const comparisons = ['~', '=', '>=', '<='] as const;
const names = { '~': 'holds', '=': 'equals', '>=': 'atLeast', '<=': 'atMost' } as const;

export function readCondition(text: string): Condition {
  const [, field = '', comparison = '=', value = ''] = /^(\w+)(>=|<=|=|~)(.*)$/s.exec(text) ?? [];
  return { field, comparison, value };
}

export const textOfCondition = ({ field, comparison, value }: Condition) => `${field}${comparison}${value.trim()}`;

let asked: Promise<TemplateField[]> | undefined;

async function askFields(): Promise<TemplateField[]> {
  const { result } = await answerOf(door.GET('/api/v1/clsGetData/GetUserDefineFilterTemplate'));
  return (result?.rows ?? []).map((row) => {
    const key = String(row.Fkey);
    const caption = captionOf({ key, caption: String(row.FCaption ?? ''), kind: 0, shown: true });
    return { key, caption: row.FPage === 2 ? `${words.ofLine} ${caption}` : caption };
  });
}

export function useTemplateFields(): readonly TemplateField[] {
  const [fields, setFields] = useState<readonly TemplateField[]>([]);
  useEffect(() => {
    asked ??= askFields();
    asked.then(setFields, (error: unknown) => {
      asked = undefined;
      sayError(error);
    });
  }, []);
  return fields;
}

interface Props {
  readonly conditions: readonly Condition[];
  readonly onChange: (conditions: Condition[]) => void;
}

export function FieldFilters({ conditions, onChange }: Props) {
  const fields = useTemplateFields();
  const put = (index: number, changed: Partial<Condition>) => (
    onChange(conditions.map((condition, at) => (at === index ? { ...condition, ...changed } : condition)))
  );
  return (
    <fieldset class="stack">
      <legend>{words.otherFields}</legend>
      {conditions.map(({ field, comparison, value }, index) => (
        <div key={index} class="row">
          <select aria-label={words.field} value={field} onChange={(event) => put(index, { field: event.currentTarget.value })}>
            <option value="" />
            {fields.map(({ key, caption }) => <option key={key} value={key}>{caption}</option>)}
          </select>
          <select aria-label={words.comparison} value={comparison}
            onChange={(event) => put(index, { comparison: event.currentTarget.value })}>
            {comparisons.map((known) => <option key={known} value={known}>{words[names[known]]}</option>)}
          </select>
          <input aria-label={words.value} value={value} autocomplete="off"
            onInput={(event) => put(index, { value: event.currentTarget.value })} />
          <button type="button" aria-label={words.dropField}
            onClick={() => onChange(conditions.filter((_, at) => at !== index))}>×</button>
        </div>
      ))}
      <div class="row">
        <button type="button" onClick={() => onChange([...conditions, { field: '', comparison: '~', value: '' }])}>
          {words.addField}
        </button>
      </div>
    </fieldset>
  );
}
