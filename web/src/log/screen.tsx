// The log: who did what with which order, the latest first.
import { useEffect, useRef, useState } from 'preact/hooks';
import { wordsOf } from '../parts/problem.js';
import { linkTo, route } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill, formatTime } from '../words/language.js';
import { askPage, page, type LogLine } from './entries.js';
import { FilterForm } from './filter_form.js';
import { nameOf } from './names.js';
import { SaveLog } from './save.js';
import { words } from './words.js';
import './log.css';

/** The entries that came, and what brings the next page. */
function useEntries(query: URLSearchParams) {
  const [lines, setLines] = useState<readonly LogLine[]>();
  const [whole, setWhole] = useState(false);
  const [busy, setBusy] = useState(false);
  const [wrong, setWrong] = useState('');
  const asking = useRef(new AbortController());
  const asked = query.toString();
  const read = (before: readonly LogLine[]) => {
    asking.current.abort();
    const { signal } = asking.current = new AbortController();
    setBusy(true);
    setWrong('');
    askPage(query, before[before.length - 1], signal).then((next) => {
      if (signal.aborted) return;
      setLines([...before, ...next]);
      setWhole(next.length < page);
      setBusy(false);
    }, (error: unknown) => {
      if (signal.aborted) return;
      setWrong(wordsOf(error));
      setBusy(false);
    });
  };
  useEffect(() => {
    setLines(undefined);
    read([]);
    return () => asking.current.abort();
  }, [asked]);
  return { lines, whole, busy, wrong, more: () => read(lines ?? []) };
}

export function LogScreen() {
  const { query } = route.value;
  const { lines, whole, busy, wrong, more } = useEntries(query);
  return (
    <div class="log stack">
      <h1>{common.log}</h1>
      <FilterForm key={query.toString()} query={query} />
      <div class="row">
        <span class="quiet" role="status">
          {busy && common.loading}
          {!busy && lines && (lines.length ? fill(words.shown, { count: lines.length }) : words.noneMatch)}
        </span>
        {lines && lines.length > 0 && <SaveLog key={query.toString()} query={query} />}
      </div>
      {lines && lines.length > 0 && <Entries lines={lines} />}
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={more}>{common.retry}</button>
        </div>
      )}
      {lines && lines.length > 0 && !whole && !wrong && (
        <div class="row"><button type="button" disabled={busy} onClick={more}>{words.more}</button></div>
      )}
    </div>
  );
}

function Entries({ lines }: { lines: readonly LogLine[] }) {
  return (
    <div class="scrolls" tabIndex={0} role="region" aria-label={common.log}>
      <table>
        <thead>
          <tr>
            <th>{words.when}</th><th>{words.order}</th><th>{words.what}</th><th>{words.change}</th><th>{words.who}</th>
            <th>{words.address}</th>
          </tr>
        </thead>
        <tbody>{lines.map((line) => <EntryRow key={`${line.FKind}${line.FKey}`} line={line} />)}</tbody>
      </table>
    </div>
  );
}

function EntryRow({ line }: { line: LogLine }) {
  const { FOrder, FOrderID, FEntryID, FOldValue, FNewValue } = line;
  return (
    <tr>
      <td class="when">{formatTime(line.FTime)}</td>
      <td>{FOrder > 0 ? <a href={linkTo(`order/${FOrder}`)}>{FOrderID || FOrder}</a> : FOrderID}</td>
      <td>
        {nameOf(line)} {FEntryID > 0 && <span class="quiet">{fill(words.line, { line: String(FEntryID) })}</span>}
      </td>
      <td class="change">{FOldValue || FNewValue ? `${FOldValue} → ${FNewValue}` : ''}</td>
      <td>{line.FUserName}</td>
      <td class="quiet">{line.FAddress}</td>
    </tr>
  );
}
