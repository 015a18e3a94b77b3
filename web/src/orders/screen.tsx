// The list of orders: tabs, filters, the grid, and the steps that the selection can take.
import { useEffect, useLayoutEffect, useMemo, useRef, useState } from 'preact/hooks';
import { useChanges } from '../api/events.js';
import { keep, kept } from '../api/kept.js';
import { ask, type Tab } from '../api/workbench.js';
import { ColumnsDialog } from '../grid/columns_dialog.js';
import { Grid } from '../grid/grid.js';
import { arrange, change, move, step, type Place } from '../grid/layout.js';
import { nothingSelected } from '../grid/selection.js';
import { words as gridWords } from '../grid/words.js';
import { wordsOf } from '../parts/problem.js';
import { useShortcut } from '../parts/keys.js';
import { sayError } from '../parts/toasts.js';
import { go, linkTo, route } from '../shell/route.js';
import { StepsBar } from '../steps/bar.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { askColumns, captionOf, columnsOf, firstPlaces, type Described } from './columns.js';
import { filterOf, tabOf } from './filter.js';
import { FilterChips, FilterDialog } from './filters.js';
import { lastList } from './list.js';
import { delivered, isBare, stateOf, toBeDelivered, toBePicked } from './row.js';
import { Rows } from './rows.js';
import { Tabs } from './tabs.js';
import { ViewsDialog } from './views.js';
import { words } from './words.js';
import './orders.css';

/** As many keys as the server hands out. */
const most = 100_000;
/** More than a screen shows. */
const firstKeys = 200;
const firstRows = 50;
const viewPause = 60;
const changesPause = 400;
/** For rows: then the list is shown without them. */
const longestWait = 250;
const usualSort = 'FSitePayDate';
const tabStates: Partial<Record<Tab, number>> = { toBePicked, toBeDelivered, delivered };

/** The keys that the link asks for; undefined while they come for the first time. */
function useKeys(query: URLSearchParams, rows: Rows) {
  const [keys, setKeys] = useState<readonly number[]>();
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(false);
  const [times, setTimes] = useState(0);
  const asked = query.toString();
  const shownFor = useRef('');
  // Before the page is drawn, so that the server is asked at once.
  useLayoutEffect(() => {
    const asking = new AbortController();
    const show = (found: readonly number[]) => {
      lastList.value = { keys: found, link: linkTo('orders', query) };
      setKeys(found);
      setWrong('');
      shownFor.current = asked;
    };
    const load = async () => {
      const filter = filterOf(query);
      // The first orders can be read while the keys of all are still on their way. A list that stands is not cut.
      if (shownFor.current !== asked) {
        const begin = (await ask('orders', { ...filter, most: firstKeys }, asking.signal)).map(({ FID }) => FID);
        // One drawing with the rows is sooner done than one without and one with them.
        await Promise.race([rows.need(begin, 0, firstRows - 1), new Promise((done) => setTimeout(done, longestWait))]);
        if (asking.signal.aborted) return;
        show(begin);
        if (begin.length < firstKeys) return;
      }
      show((await ask('orders', filter, asking.signal)).map(({ FID }) => FID));
    };
    setBusy(true);
    load().then(() => setBusy(false), (error: unknown) => {
      if (asking.signal.aborted) return;
      setWrong(wordsOf(error));
      setBusy(false);
    });
    return () => asking.abort();
  }, [asked, times]);
  const coming = busy && (shownFor.current !== asked || keys?.length === firstKeys);
  return { keys, wrong, coming, again: () => setTimes((before) => before + 1) };
}

function useCounts() {
  const [counts, setCounts] = useState<ReadonlyMap<Tab, number>>(new Map());
  const count = () => {
    ask('tabs', {}).then((rows) => setCounts(new Map(rows.map(({ FTab, FOrders }) => [FTab as Tab, FOrders]))), sayError);
  };
  useEffect(count, []);
  return { counts, count };
}

/** The columns, where the user put them, and what puts them elsewhere. */
function useColumns() {
  const [described, setDescribed] = useState<readonly Described[]>([]);
  const [places, setPlaces] = useState<readonly Place[]>([]);
  useEffect(() => {
    askColumns().then((columns) => {
      setDescribed(columns);
      setPlaces(arrange(firstPlaces(columns), kept<Place[]>('columns')));
    }, sayError);
  }, []);
  const put = (wanted: readonly Place[]) => {
    keep('columns', wanted);
    setPlaces(wanted);
  };
  const reset = () => {
    keep('columns', undefined);
    setPlaces(firstPlaces(described));
  };
  return { described, places, put, reset };
}

export function OrdersScreen() {
  const { query } = route.value;
  const rows = useMemo(() => new Rows(), []);
  const { keys, wrong, coming, again } = useKeys(query, rows);
  const { counts, count } = useCounts();
  const { described, places, put, reset } = useColumns();
  const [selection, setSelection] = useState(nothingSelected);
  const [open, setOpen] = useState<'columns' | 'views' | 'filters'>();
  const [first, setFirst] = useState('orderedFrom');
  const [stale, setStale] = useState(false);
  const timer = useRef(0);
  const stepped = useRef(false);
  const changed = useRef(new Set<number>());
  const soon = useRef(0);
  useShortcut('f', words.filterKey, () => setOpen('filters'));

  useEffect(() => setSelection(nothingSelected), [tabOf(query)]);
  useEffect(() => {
    if (!keys) return;
    setStale(false);
    const left = new Set(keys);
    setSelection((before) => ({ ...before, keys: new Set([...before.keys].filter((key) => left.has(key))) }));
    // A step that emptied the selection took the button with the focus away.
    if (stepped.current && document.activeElement === document.body) {
      document.querySelector<HTMLElement>('.grid-row[tabindex="0"]')?.focus();
    }
    stepped.current = false;
  }, [keys]);
  useChanges((orders, mine) => {
    orders.forEach((order) => changed.current.add(order));
    if (!mine) setStale(true);
    // A step for many orders tells of each block; they are asked for together.
    soon.current ||= window.setTimeout(() => {
      soon.current = 0;
      count();
      rows.refresh([...changed.current]);
      changed.current.clear();
    }, changesPause);
  });
  useEffect(() => () => clearTimeout(soon.current), []);
  const refresh = (orders: readonly number[]) => {
    stepped.current = true;
    rows.refresh(orders);
    count();
    again();
  };

  const sort = { name: query.get('sort') ?? usualSort, descending: query.has('descending') };
  const sortBy = (name: string) => {
    const wanted = new URLSearchParams(query);
    wanted.set('sort', name);
    if (sort.name === name && !sort.descending) wanted.set('descending', 'true');
    else wanted.delete('descending');
    go('orders', wanted, true);
  };
  // Reading the version draws the grid again when rows have come.
  const columns = rows.version.value >= 0 ? columnsOf(described, places) : [];
  const tab = tabOf(query);
  const stateAt = (key: number) => {
    const row = rows.of(key);
    return row && !isBare(row) ? stateOf(row) : tab && tabStates[tab];
  };
  const captions = new Map(described.map((column) => [column.key, captionOf(column)]));
  return (
    <div class="orders">
      <h1 class="hidden">{common.orders}</h1>
      <Tabs query={query} counts={counts} />
      <div class="tools">
        <button type="button" onClick={() => { setFirst('orderedFrom'); setOpen('filters'); }}>{words.filters}</button>
        <FilterChips query={query} onChange={(field) => {
          setFirst(field.kind === 'dates' ? field.keys[0] : field.name);
          setOpen('filters');
        }} />
        <span class="said quiet" role="status">
          {!keys || coming ? common.loading : fill(words.orders, { count: keys.length })}
          {selection.keys.size > 0 && ` · ${fill(words.selected, { count: selection.keys.size })}`}
        </span>
        <button type="button" onClick={() => setOpen('views')}>{words.views}</button>
        <button type="button" onClick={() => setOpen('columns')}>{gridWords.columns}</button>
      </div>
      <div class="notes">
        {stale && <button type="button" onClick={() => { setStale(false); again(); }}>{words.changed}</button>}
        {keys && keys.length >= most && <p class="note warn">{fill(words.more, { count: most })}</p>}
        {keys?.length === 0 && <p class="quiet">{words.noneMatch}</p>}
        {wrong && (
          <div class="note bad row" role="alert">
            {wrong} <button type="button" onClick={again}>{common.retry}</button>
          </div>
        )}
      </div>
      {keys && columns.length > 0 && (
        <Grid label={common.orders} list={query.toString()} keys={keys} columns={columns} rowOf={(key) => rows.of(key)}
          onView={(from, to) => {
            clearTimeout(timer.current);
            timer.current = window.setTimeout(() => void rows.need(keys, from, to), viewPause);
          }}
          selection={selection} onSelect={setSelection} onOpen={(key) => go(`order/${key}`)}
          sort={sort} onSort={sortBy}
          onMove={(name, to) => put(move(places, name, to))} onStep={(name, by) => put(step(places, name, by))}
          onSize={(name, width) => put(change(places, name, { width }))} />
      )}
      {selection.keys.size > 0 && <StepsBar keys={[...selection.keys]} stateOf={stateAt} onChanged={refresh} />}
      {open === 'filters' && <FilterDialog query={query} first={first} onClose={() => setOpen(undefined)} />}
      {open === 'views' && <ViewsDialog query={query} onClose={() => setOpen(undefined)} />}
      {open === 'columns' && (
        <ColumnsDialog places={places} captionOf={(name) => captions.get(name) ?? name} onChange={put} onReset={reset}
          onClose={() => setOpen(undefined)} />
      )}
    </div>
  );
}
