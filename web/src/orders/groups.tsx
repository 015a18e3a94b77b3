// Groups of orders, of which one is shown.
import { formatNumber } from '../words/language.js';

export interface Group<Name extends string> {
  readonly name: Name;
  readonly text: string;
  readonly count: number | undefined;
}

export function Groups<Name extends string>({ label, groups, here, onChoose }: {
  label: string; groups: readonly Group<Name>[]; here: Name; onChoose: (name: Name) => void;
}) {
  return (
    <div class="row group-choice" role="group" aria-label={label}>
      {groups.map(({ name, text, count }) => (
        <button key={name} type="button" aria-pressed={name === here} onClick={() => onChoose(name)}>
          {text} {count !== undefined && <b>{formatNumber(count)}</b>}
        </button>
      ))}
    </div>
  );
}
