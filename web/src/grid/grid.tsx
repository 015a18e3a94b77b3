// A grid of very many rows. Only what is in view is drawn; rows that are still to come are placeholders.
import { defaultRangeExtractor, type Range } from '@tanstack/virtual-core';
import { useEffect, useLayoutEffect, useRef, useState } from 'preact/hooks';
import { GridHead } from './head.js';
import { everything, nothingSelected, only, rangeTo, toggled, type Selection } from './selection.js';
import { useVirtualizer } from './virtual.js';
import { words } from './words.js';
import './grid.css';

export interface Column<Row> {
  readonly name: string;
  readonly caption: string;
  readonly width: number;
  readonly pinned: boolean;
  readonly numeric: boolean;
  readonly sortable: boolean;
  readonly textOf: (row: Row) => string;
  /** Makes the text a link. */
  readonly linkOf?: (row: Row) => string;
}

export interface Sort {
  readonly name: string;
  readonly descending: boolean;
}

export interface GridProps<Row> {
  readonly label: string;
  /** Which list it is; another one is shown from its begin. */
  readonly list: string;
  readonly keys: readonly number[];
  readonly columns: readonly Column<Row>[];
  readonly rowOf: (key: number) => Row | undefined;
  /** Says which rows are in view. */
  readonly onView: (first: number, last: number) => void;
  readonly selection: Selection;
  readonly onSelect: (selection: Selection) => void;
  readonly onOpen: (key: number) => void;
  readonly sort: Sort | undefined;
  readonly onSort: (name: string) => void;
  readonly onMove: (name: string, to: string) => void;
  readonly onStep: (name: string, by: 1 | -1) => void;
  readonly onSize: (name: string, width: number) => void;
}

const rowHeight = 32;
const headHeight = 36;
const markWidth = 40;
/** Rows drawn above and below what is in view. */
const beyond = 6;

/** The number of the element that shows a row. A row keeps it as long as it is drawn; then another row gets it. */
function useElements(indexes: readonly number[]): ReadonlyMap<number, number> {
  const before = useRef<ReadonlyMap<number, number>>(new Map());
  const drawn = new Set(indexes);
  const free = [...before.current].flatMap(([index, element]) => drawn.has(index) ? [] : [element]);
  let next = 1 + Math.max(-1, ...before.current.values());
  before.current = new Map(indexes.map((index) => [index, before.current.get(index) ?? free.pop() ?? next++]));
  return before.current;
}

function withIndex(range: Range, index: number): number[] {
  const indexes = defaultRangeExtractor(range);
  return index < range.count && !indexes.includes(index) ? [...indexes, index].sort((a, b) => a - b) : indexes;
}

export function Grid<Row>(props: GridProps<Row>) {
  const { keys, columns, selection, onSelect } = props;
  const scroller = useRef<HTMLDivElement>(null);
  const focusNext = useRef(false);
  const [at, setAt] = useState(0);
  const [head, setHead] = useState(0);
  const active = Math.min(at, Math.max(0, keys.length - 1));

  // Pinned columns that would leave no room for the others move with them.
  const wide = scroller.current?.clientWidth ?? innerWidth;
  const pinnedWidth = columns.reduce((sum, { pinned, width }) => sum + (pinned ? width : 0), markWidth);
  const fits = pinnedWidth < wide * 0.6;
  const pinned = fits ? columns.filter((column) => column.pinned) : [];
  const loose = fits ? columns.filter((column) => !column.pinned) : columns;
  const left = fits ? pinnedWidth : markWidth;

  const rows = useVirtualizer({
    count: keys.length, getScrollElement: () => scroller.current, estimateSize: () => rowHeight, overscan: beyond,
    scrollPaddingEnd: headHeight, paddingEnd: headHeight, rangeExtractor: (range) => withIndex(range, active),
  });
  const across = useVirtualizer({
    count: loose.length, horizontal: true, getScrollElement: () => scroller.current, overscan: 2,
    estimateSize: (index) => loose[index]?.width ?? 0, scrollPaddingEnd: left, paddingEnd: left,
    rangeExtractor: (range) => withIndex(range, Math.max(0, head - pinned.length)),
  });
  const widths = loose.map(({ name, width }) => `${name}:${width}`).join();
  useLayoutEffect(() => across.measure(), [widths]);

  useEffect(() => {
    // The row with the focus may be none of the new list.
    if (scroller.current?.querySelector('.grid-body')?.contains(document.activeElement)) focusNext.current = true;
    setAt(0);
    rows.scrollToOffset(0);
  }, [props.list]);

  const shown = rows.getVirtualItems();
  const elements = useElements(shown.map(({ index }) => index));
  // An element that is moved in the document loses the focus, and a click that has begun. So elements stay where they are.
  // Screen readers are told the order of the rows by aria-owns.
  const still = [...shown].sort((a, b) => elements.get(a.index)! - elements.get(b.index)!);
  const order = shown.map(({ index }) => `row-${elements.get(index)!}`).join(' ');
  const first = rows.range?.startIndex ?? 0;
  const last = rows.range?.endIndex ?? 0;
  useEffect(() => props.onView(first, last), [first, last, keys]);
  useLayoutEffect(() => {
    if (!focusNext.current) return;
    focusNext.current = false;
    scroller.current?.querySelector<HTMLElement>(`[data-row="${active}"]`)?.focus({ preventScroll: true });
  });

  const go = (index: number, range: boolean) => {
    const to = Math.max(0, Math.min(keys.length - 1, index));
    focusNext.current = true;
    setAt(to);
    rows.scrollToIndex(to);
    if (range) onSelect(rangeTo(selection.keys.size ? selection : only(keys, active), keys, to));
  };
  const onKey = (event: KeyboardEvent) => {
    const page = Math.max(1, last - first - 1);
    const moves: Record<string, number> = {
      ArrowDown: active + 1, ArrowUp: active - 1, PageDown: active + page, PageUp: active - page,
      Home: 0, End: keys.length - 1,
    };
    const to = moves[event.key];
    const command = event.ctrlKey || event.metaKey;
    if (to !== undefined) go(to, event.shiftKey);
    else if (event.key === ' ') onSelect((event.shiftKey ? rangeTo : toggled)(selection, keys, active));
    else if (event.key === 'a' && command) onSelect(everything(keys));
    else if (event.key === 'Escape') onSelect(nothingSelected);
    else if (event.key === 'Enter' && keys[active] !== undefined) props.onOpen(keys[active]);
    else return;
    event.preventDefault();
  };
  const onClick = (event: MouseEvent, index: number) => {
    if (event.target instanceof Element && event.target.closest('a')) return;
    focusNext.current = true;
    setAt(index);
    const marks = event.target instanceof Element && event.target.closest('.mark');
    if (event.shiftKey) onSelect(rangeTo(selection, keys, index));
    else if (event.ctrlKey || event.metaKey || marks) onSelect(toggled(selection, keys, index));
    else onSelect(only(keys, index));
  };

  const inView = across.getVirtualItems();
  // The head and what is pinned cover as much as the lists are longer than their rows and columns.
  const width = across.getTotalSize();
  const height = rows.getTotalSize() - headHeight;
  /** Cells stand one behind the other; the place of those that are not drawn is a margin. */
  const cells = inView.map((item, index) => {
    const before = inView[index - 1];
    return { column: loose[item.index]!, index: pinned.length + item.index, gap: item.start - (before?.end ?? 0) };
  });
  const pins = pinned.map((column, index) => ({
    column, index, left: pinned.slice(0, index).reduce((sum, other) => sum + other.width, markWidth),
  }));
  const all = keys.length > 0 && selection.keys.size === keys.length;
  return (
    <div class="grid" ref={scroller} role="grid" aria-label={props.label} aria-describedby="grid-help"
      aria-multiselectable="true" aria-rowcount={keys.length + 1} aria-colcount={columns.length + 1}>
      <GridHead {...props} cells={cells} pins={pins} width={width} all={all} at={head} onAt={setHead}
        onAll={() => onSelect(all ? nothingSelected : everything(keys))}
        onShow={(index) => index >= pinned.length && across.scrollToIndex(index - pinned.length)} />
      <div class="grid-body" role="rowgroup" aria-owns={order} style={{ height, width }} onKeyDown={onKey}>
        {still.map(({ index, start }) => {
          const key = keys[index]!;
          const row = props.rowOf(key);
          const chosen = selection.keys.has(key);
          return (
            <div key={elements.get(index)} id={`row-${elements.get(index)!}`} class="grid-row" role="row"
              aria-rowindex={index + 2} aria-selected={chosen} data-row={index}
              tabIndex={index === active ? 0 : -1} style={{ transform: `translateY(${start}px)`, width }}
              onClick={(event) => onClick(event, index)} onDblClick={() => props.onOpen(key)}>
              <div class="mark" role="gridcell" aria-colindex={1}>
                <span class={chosen ? 'box on' : 'box'} />
              </div>
              {pins.map((pin) => (
                <Cell key={pin.column.name} {...pin} row={row} class="pin" style={{ left: pin.left }} />
              ))}
              {cells.map((cell) => (
                <Cell key={cell.column.name} {...cell} row={row} class="" style={{ marginInlineStart: cell.gap }} />
              ))}
            </div>
          );
        })}
      </div>
      <p id="grid-help" class="hidden">{words.help}</p>
    </div>
  );
}

interface CellProps<Row> {
  column: Column<Row>;
  index: number;
  row: Row | undefined;
  class: string;
  style: Record<string, number>;
}

function Cell<Row>({ column, index, row, class: kind, style }: CellProps<Row>) {
  const text = row === undefined ? '' : column.textOf(row);
  return (
    <div role="gridcell" aria-colindex={index + 2} class={`${kind}${column.numeric ? ' number' : ''}`}
      title={text} style={{ ...style, width: column.width }}>
      {row === undefined ? <span class="wait" />
        : column.linkOf ? <a href={column.linkOf(row)} tabIndex={-1}>{text}</a> : text}
    </div>
  );
}
