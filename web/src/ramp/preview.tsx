// The lines of the table, each with what is wrong with it or what became of it.
import { useEffect, useState } from 'preact/hooks';
import { linkTo } from '../shell/route.js';
import type { Outcomes } from '../steps/run.js';
import { stateWords } from '../steps/state_words.js';
import { fill, formatNumber } from '../words/language.js';
import { workWords } from '../orders/work_words.js';
import { fields, type Columns, type Field } from './columns.js';
import { canBeDone, type Judged } from './lines.js';
import { words } from './words.js';

const page = 100;

interface Choosing {
  /** The values of the first line. */
  readonly example: readonly string[];
  readonly columns: Columns;
  readonly onChange: (columns: Columns) => void;
}

export function ColumnChoices({ example, columns, onChange }: Choosing) {
  const choose = (at: number, field: string) => (
    onChange(columns.map((before, index) => index === at ? fields.find((known) => known === field) : before))
  );
  return (
    <fieldset class="row">
      <legend>{words.columns}</legend>
      {columns.map((column, at) => (
        <label key={at} class="field">
          {example[at] || fill(words.columnOf, { place: at + 1 })}
          <select value={column ?? ''} onChange={(event) => choose(at, event.currentTarget.value)}>
            <option value="">{words.unused}</option>
            {fields.map((field) => <option key={field} value={field}>{words[field]}</option>)}
          </select>
        </label>
      ))}
    </fieldset>
  );
}

export function outcomeText(line: Judged, outcomes: Outcomes): string {
  const outcome = canBeDone(line) ? outcomes.get(line.parcel.FID) : undefined;
  return outcome === undefined ? '' : outcome || workWords.done;
}

function Notes({ line }: { line: Judged }) {
  return (
    <>
      {line.errors.map((text) => <p key={text} class="error"><b>{words.error}</b> {text}</p>)}
      {line.warnings.map((text) => <p key={text} class="warning"><b>{words.warning}</b> {text}</p>)}
    </>
  );
}

function LineRow({ line, outcome }: { line: Judged; outcome: string }) {
  const { parcel, texts } = line;
  const amount = (field: Field, value: number | undefined) => value === undefined ? texts[field] : formatNumber(value);
  return (
    <tr>
      <td class="number">{line.at}</td>
      <td>{texts.number}</td>
      <td>{parcel && <a href={linkTo(`order/${parcel.FID}`)}>{parcel.FOrderID}</a>}</td>
      <td>{parcel?.FConsignee}</td>
      <td>{parcel && stateWords(parcel.FOrderStatus)}</td>
      <td>{texts.waybill}</td>
      <td class="number">{amount('weight', line.weight)}</td>
      <td class="number">{amount('cost', line.cost)}</td>
      <td>{outcome || <Notes line={line} />}</td>
    </tr>
  );
}

export function Preview({ lines, outcomes }: { lines: readonly Judged[]; outcomes: Outcomes }) {
  const [marked, setMarked] = useState(false);
  const [shown, setShown] = useState(page);
  useEffect(() => setShown(page), [marked]);
  const wanted = marked ? lines.filter((line) => !canBeDone(line) || line.warnings.length) : lines;
  return (
    <>
      <label class="row">
        <input type="checkbox" checked={marked} onChange={(event) => setMarked(event.currentTarget.checked)} />
        {words.errorsOnly}
      </label>
      <div class="lines" tabIndex={0} role="region" aria-label={words.preview}>
        <table>
          <thead>
            <tr>
              <th class="number">{words.line}</th><th>{words.number}</th><th>{words.order}</th>
              <th>{words.consignee}</th><th>{words.state}</th><th>{words.waybill}</th>
              <th class="number">{words.weight}</th><th class="number">{words.cost}</th>
              <th>{outcomes.size ? words.outcome : words.notes}</th>
            </tr>
          </thead>
          <tbody>
            {wanted.slice(0, shown).map((line) => (
              <LineRow key={line.at} line={line} outcome={outcomeText(line, outcomes)} />
            ))}
          </tbody>
        </table>
      </div>
      {wanted.length > shown && (
        <div class="row">
          <button type="button" onClick={() => setShown(shown + page)}>
            {fill(words.more, { count: Math.min(page, wanted.length - shown) })}
          </button>
        </div>
      )}
    </>
  );
}
