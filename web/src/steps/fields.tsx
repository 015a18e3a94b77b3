// What a step asks for.
import { codeOf, useChoices } from '../orders/choices.js';
import type { Field, Values } from './steps.js';
import { words } from './words.js';

interface Props {
  readonly field: Field;
  readonly values: Values;
  readonly onChange: (values: Values) => void;
}

export function StepField({ field, values, onChange }: Props) {
  const choices = useChoices();
  const value = values[field.name] ?? '';
  const set = (text: string) => onChange({ ...values, [field.name]: text });
  const label = words[field.name];
  switch (field.kind) {
    case 'mark':
      return (
        <label class="row">
          <input type="checkbox" checked={Boolean(value)} onChange={() => set(value ? '' : '1')} />
          {label}
        </label>
      );
    case 'text':
      return (
        <label class="field">
          {label}
          <input value={value} required={!field.optional} onInput={(event) => set(event.currentTarget.value)} />
        </label>
      );
    case 'long':
      return (
        <label class="field">
          {label}
          <textarea rows={3} value={value} required onInput={(event) => set(event.currentTarget.value)} />
        </label>
      );
    case 'amount':
      return (
        <label class="field">
          {label}
          <input type="number" min="0" step="0.01" value={value} required
            onInput={(event) => set(event.currentTarget.value)} />
        </label>
      );
    default:
      return (
        <label class="field">
          {label}
          <select value={value} required onChange={(event) => set(event.currentTarget.value)}>
            <option value="">{words.choose}</option>
            {field.kind === 'carrier' && <option value="0">{words.noCarrier}</option>}
            {choices.filter(({ FKind }) => FKind === field.kind).map((choice) => (
              <option key={choice.FID} value={codeOf(choice)}>
                {choice.FNumber ? `${choice.FNumber} ${choice.FName}` : choice.FName}
              </option>
            ))}
          </select>
        </label>
      );
  }
}
