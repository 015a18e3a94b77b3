// Filters on any field of the template: those that an installation added among them.
import { useEffect, useState } from 'preact/hooks';
import { answerOf, door } from '../api/door.js';
import { sayError } from '../parts/toasts.js';
import { captionOf } from './columns.js';
import { kinds } from './row.js';
import { words } from './words.js';

export interface Condition {
  readonly field: string;
  readonly comparison: string;
  readonly value: string;
}

interface TemplateField {
  readonly key: string;
  readonly caption: string;
  readonly kind: 'text' | 'number' | 'date';
}

/** Tables of the template that orders can be filtered by. */
const tables = [
  'IC_Web2ERPOrders', 'IC_Web2ERPOrdersEx', 'IC_StockBillOrdersStatus', 'IC_PrintOrderInfo', 'IC_Web2ERPOrdersEntry',
  't_ICItem',
];
const comparisons = {
  text: ['~', '='], number: ['=', '>=', '<='], date: ['>=', '<='],
} as const satisfies Record<TemplateField['kind'], readonly string[]>;
const names = { '~': 'holds', '=': 'equals', '>=': 'atLeast', '<=': 'atMost' } as const;

export function readCondition(text: string): Condition {
  const [, field = '', comparison = '=', value = ''] = /^(\w+)(>=|<=|=|~)(.*)$/s.exec(text) ?? [];
  return { field, comparison, value };
}

export const textOfCondition = ({ field, comparison, value }: Condition) => `${field}${comparison}${value.trim()}`;

let asked: Promise<TemplateField[]> | undefined;

async function askFields(): Promise<TemplateField[]> {
  const { result } = await answerOf(door.GET('/api/v1/clsGetData/GetUserDefineFilterTemplate'));
  const seen = new Set<string>();
  // A key that the template has twice stands for the order's own field.
  const usable = (result?.rows ?? []).filter(({ FTableName, Fkey }) => (
    tables.includes(String(FTableName)) && !seen.has(String(Fkey)) && seen.add(String(Fkey))
  ));
  return usable.map((row) => {
    const key = String(row.Fkey);
    const kind = row.FCtlType === kinds.date ? 'date'
      : row.FCtlType === kinds.number || row.FCtlType === kinds.mark ? 'number' : 'text';
    const caption = captionOf({ key, caption: String(row.FCaption ?? ''), kind: 0, shown: true });
    return { key, kind, caption: row.FPage === 2 ? `${words.ofLine} ${caption}` : caption };
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
  const kindOf = (field: string) => fields.find(({ key }) => key === field)?.kind ?? 'text';
  const put = (index: number, changed: Partial<Condition>) => (
    onChange(conditions.map((condition, at) => (at === index ? { ...condition, ...changed } : condition)))
  );
  return (
    <fieldset class="stack">
      <legend>{words.otherFields}</legend>
      {conditions.map(({ field, comparison, value }, index) => (
        <div key={index} class="row">
          <select aria-label={words.field} value={field} onChange={(event) => {
            const wanted = event.currentTarget.value;
            put(index, { field: wanted, comparison: comparisons[kindOf(wanted)][0], value: '' });
          }}>
            <option value="" />
            {fields.map(({ key, caption }) => <option key={key} value={key}>{caption}</option>)}
          </select>
          <select aria-label={words.comparison} value={comparison}
            onChange={(event) => put(index, { comparison: event.currentTarget.value })}>
            {comparisons[kindOf(field)].map((known) => <option key={known} value={known}>{words[names[known]]}</option>)}
          </select>
          <input aria-label={words.value} value={value} autocomplete="off" required
            type={kindOf(field) === 'date' ? 'date' : 'text'} inputMode={kindOf(field) === 'number' ? 'decimal' : 'text'}
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
