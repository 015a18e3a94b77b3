// A list of orders with a selection. Rows are asked for as far as they are shown.
import { useEffect, useMemo, useState } from 'preact/hooks';
import { linkTo } from '../shell/route.js';
import { stateWords } from '../steps/state_words.js';
import { fill } from '../words/language.js';
import { columnWords } from './column_words.js';
import { isBare, stateOf, textOf, type Row } from './row.js';
import { Rows } from './rows.js';
import { shortListWords as words } from './short_list_words.js';
import './short_list.css';

export interface ShortColumn {
  readonly caption: string;
  readonly textOf: (row: Row) => string;
  readonly numeric?: boolean;
}

interface Props {
  readonly label: string;
  /** Other keys, even the same ones in another array, have the rows asked for again. */
  readonly keys: readonly number[];
  /** Beside number, consignee and state. */
  readonly columns: readonly ShortColumn[];
  readonly selected: ReadonlySet<number>;
  readonly onSelect: (selected: ReadonlySet<number>) => void;
}

const page = 100;

export function ShortList({ label, keys, columns, selected, onSelect }: Props) {
  const rows = useMemo(() => new Rows(), []);
  const [shown, setShown] = useState(page);
  useEffect(() => {
    rows.refresh(keys.slice(0, shown));
    void rows.need(keys, 0, shown - 1);
  }, [keys, shown]);
  // Reading the version draws the list again when rows have come.
  const seen = rows.version.value >= 0 ? keys.slice(0, shown) : [];
  const toggle = (key: number) => {
    const wanted = new Set(selected);
    if (!wanted.delete(key)) wanted.add(key);
    onSelect(wanted);
  };
  const allSelected = keys.length > 0 && keys.every((key) => selected.has(key));
  return (
    <div class="stack">
      <div class="short-list" tabIndex={0} role="region" aria-label={label}>
        <table>
          <thead>
            <tr>
              <th>
                <input type="checkbox" aria-label={fill(words.selectAll, { count: keys.length })} checked={allSelected}
                  onChange={() => onSelect(new Set(allSelected ? [] : keys))} />
              </th>
              <th>{columnWords.FOrderID}</th><th>{columnWords.FConsignee}</th><th>{words.state}</th>
              {columns.map(({ caption, numeric }) => <th key={caption} class={numeric ? 'number' : ''}>{caption}</th>)}
            </tr>
          </thead>
          <tbody>
            {seen.map((key) => (
              <OrderLine key={key} order={key} row={rows.of(key)} columns={columns} selected={selected.has(key)}
                onToggle={() => toggle(key)} />
            ))}
          </tbody>
        </table>
      </div>
      <div class="row">
        <span class="quiet" role="status">{fill(words.selected, { count: selected.size, all: keys.length })}</span>
        {keys.length > shown && (
          <button type="button" onClick={() => setShown(shown + page)}>
            {fill(words.more, { count: Math.min(page, keys.length - shown) })}
          </button>
        )}
      </div>
    </div>
  );
}

interface LineProps {
  readonly order: number;
  readonly row: Row | undefined;
  readonly columns: readonly ShortColumn[];
  readonly selected: boolean;
  readonly onToggle: () => void;
}

function OrderLine({ order, row, columns, selected, onToggle }: LineProps) {
  const number = row ? textOf(row, 'FOrderID') : String(order);
  const known = row && !isBare(row) ? row : undefined;
  return (
    <tr>
      <td>
        <input type="checkbox" aria-label={fill(words.select, { order: number })} checked={selected}
          onChange={onToggle} />
      </td>
      <td><a href={linkTo(`order/${order}`)}>{number}</a></td>
      <td>{known && textOf(known, 'FConsignee')}</td>
      <td>{known && stateWords(stateOf(known))}</td>
      {columns.map(({ caption, textOf: text, numeric }) => (
        <td key={caption} class={numeric ? 'number' : ''}>{known && text(known)}</td>
      ))}
    </tr>
  );
}
