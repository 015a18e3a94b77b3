// A list of orders with what became of each, or why it cannot be done.
import { say, sayError } from '../parts/toasts.js';
import type { Row } from '../orders/row.js';
import { words } from './words.js';

/** More lines than people read; a copy of the list has all. */
const mostShown = 100;

interface Props {
  readonly title: string;
  readonly lines: readonly { readonly key: number; readonly text: string }[];
  readonly rows: ReadonlyMap<number, Row>;
}

export function numberOf(rows: ReadonlyMap<number, Row>, key: number): string {
  return String(rows.get(key)?.['FOrderID'] ?? key);
}

export function OutcomeList({ title, lines, rows }: Props) {
  const copy = () => {
    const text = lines.map(({ key, text: outcome }) => `${numberOf(rows, key)}\t${outcome}`).join('\n');
    navigator.clipboard.writeText(text).then(() => say('good', words.copied), sayError);
  };
  return (
    <>
      <div class="outcomes" tabIndex={0} role="region" aria-label={title}>
        <table>
          <thead><tr><th>{words.order}</th><th>{title}</th></tr></thead>
          <tbody>
            {lines.slice(0, mostShown).map(({ key, text }) => (
              <tr key={key}><td>{numberOf(rows, key)}</td><td>{text}</td></tr>
            ))}
            {lines.length > mostShown && <tr><td colSpan={2}>…</td></tr>}
          </tbody>
        </table>
      </div>
      <div class="row end"><button type="button" onClick={copy}>{words.copy}</button></div>
    </>
  );
}
