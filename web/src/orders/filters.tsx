// The filters as chips, and the dialog that changes them.
import { useEffect, useRef, useState } from 'preact/hooks';
import { go } from '../shell/route.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { codeOf, useChoices } from './choices.js';
import { FieldFilters, readCondition, textOfCondition, useTemplateFields } from './field_filters.js';
import { fields, fieldsKey, flags, keysOf, saidOf, without, type Field } from './filter.js';
import { words } from './words.js';

function withoutCondition(query: URLSearchParams, condition: string): URLSearchParams {
  const rest = without(query, [fieldsKey]);
  query.getAll(fieldsKey).filter((other) => other !== condition).forEach((other) => rest.append(fieldsKey, other));
  return rest;
}

export function FilterChips({ query, onChange }: { query: URLSearchParams; onChange: (field: Field) => void }) {
  const choices = useChoices();
  const said = fields.map((field) => ({ field, text: saidOf(field, query, choices) })).filter(({ text }) => text);
  const conditions = query.getAll(fieldsKey);
  const templateFields = useTemplateFields();
  if (!said.length && !conditions.length) return null;
  return (
    <ul class="chips" aria-label={words.filters}>
      {said.map(({ field, text }) => {
        const filter = `${words[field.name]}: ${text}`;
        return (
          <li key={field.name}>
            <button type="button" aria-label={fill(words.changeFilter, { filter })} onClick={() => onChange(field)}>
              {filter}
            </button>
            <button type="button" aria-label={fill(words.removeFilter, { filter })}
              onClick={() => go('orders', without(query, keysOf(field)))}>×</button>
          </li>
        );
      })}
      {conditions.map((condition) => {
        const { field, comparison, value } = readCondition(condition);
        const filter = `${templateFields.find(({ key }) => key === field)?.caption ?? field} ${comparison} ${value}`;
        return (
          <li key={condition}>
            <button type="button" aria-label={fill(words.removeFilter, { filter })}
              onClick={() => go('orders', withoutCondition(query, condition))}>{filter} ×</button>
          </li>
        );
      })}
      <li>
        <button type="button" onClick={() => go('orders', without(query, [...fields.flatMap(keysOf), fieldsKey]))}>
          {words.clear}
        </button>
      </li>
    </ul>
  );
}

interface DialogProps {
  readonly query: URLSearchParams;
  /** Where the focus begins. */
  readonly first: string;
  readonly onClose: () => void;
}

export function FilterDialog({ query, first, onClose }: DialogProps) {
  const form = useRef<HTMLFormElement>(null);
  const [conditions, setConditions] = useState(() => query.getAll(fieldsKey).map(readCondition));
  useEffect(() => form.current?.querySelector<HTMLElement>(`[name="${first}"]`)?.focus(), []);
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    const wanted = without(query, [...fields.flatMap(keysOf), fieldsKey]);
    conditions.filter(({ field }) => field).forEach((condition) => wanted.append(fieldsKey, textOfCondition(condition)));
    for (const [name, value] of new FormData(form.current!)) {
      const text = String(value).trim();
      const before = query.get(name);
      // A day field shows no time: a link's time stays until another day is chosen.
      if (text) wanted.set(name, before?.startsWith(`${text}T`) ? before : text);
    }
    onClose();
    go('orders', wanted);
  };
  return (
    <Dialog title={words.filters} onClose={onClose} wide>
      <form ref={form} class="filters" onSubmit={submit}>
        <div class="fields">{fields.map((field) => <FilterField key={field.name} field={field} query={query} />)}</div>
        <FieldFilters conditions={conditions} onChange={setConditions} />
        <FormEnd main={words.apply} onClose={onClose} />
      </form>
    </Dialog>
  );
}

const dayOf = (value: string | null) => value?.slice(0, 10) ?? '';

function FilterField({ field, query }: { field: Field; query: URLSearchParams }) {
  const choices = useChoices();
  const label = words[field.name];
  if (field.kind === 'dates') {
    const [from, to] = field.keys;
    return (
      <>
        <label class="field">
          {fill(words.from, { name: label })}
          <input type="date" name={from} defaultValue={dayOf(query.get(from))} />
        </label>
        <label class="field">
          {fill(words.to, { name: label })}
          <input type="date" name={to} defaultValue={dayOf(query.get(to))} />
        </label>
      </>
    );
  }
  const value = query.get(field.name) ?? '';
  if (field.kind === 'text') {
    return <label class="field">{label}<input name={field.name} defaultValue={value} autocomplete="off" /></label>;
  }
  const options = field.kind === 'choice'
    ? choices.filter(({ FKind }) => FKind === field.from).map((choice) => [codeOf(choice), choice.FName] as const)
    : field.kind === 'yesNo' ? [['true', common.yes], ['false', common.no]] as const
      : flags.map((flag) => [flag, flag] as const);
  return (
    <label class="field">
      {label}
      <select name={field.name}>
        <option value="">{common.all}</option>
        {options.map(([option, text]) => (
          <option key={option} value={option} selected={option === value}>{text}</option>
        ))}
      </select>
    </label>
  );
}
