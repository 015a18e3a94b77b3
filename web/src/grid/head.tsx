// The head of a grid: sorts by click, and columns can be dragged and sized.
import { useLayoutEffect, useRef } from 'preact/hooks';
import type { Column, GridProps } from './grid.js';
import { narrow } from './layout.js';
import { words } from './words.js';

interface Place<Row> {
  readonly column: Column<Row>;
  readonly index: number;
}

interface HeadProps<Row> extends GridProps<Row> {
  readonly cells: readonly (Place<Row> & { gap: number })[];
  readonly pins: readonly (Place<Row> & { left: number })[];
  readonly width: number;
  readonly all: boolean;
  readonly onAll: () => void;
  /** The column that has the focus. */
  readonly at: number;
  readonly onAt: (index: number) => void;
  readonly onShow: (index: number) => void;
}

const sizeStep = 16;

export function GridHead<Row>(props: HeadProps<Row>) {
  const head = useRef<HTMLDivElement>(null);
  const focusNext = useRef(false);
  const dragged = useRef('');
  useLayoutEffect(() => {
    if (!focusNext.current) return;
    focusNext.current = false;
    head.current?.querySelector<HTMLElement>(`[data-column="${props.at}"]`)?.focus({ preventScroll: true });
  });
  const goTo = (index: number) => {
    const to = Math.max(0, Math.min(props.columns.length - 1, index));
    focusNext.current = true;
    props.onAt(to);
    props.onShow(to);
  };
  const onKey = (event: KeyboardEvent, { column, index }: Place<Row>) => {
    const by = event.key === 'ArrowRight' ? 1 : event.key === 'ArrowLeft' ? -1 : 0;
    if (by && event.ctrlKey) {
      props.onStep(column.name, by);
      goTo(index + by);
    } else if (by && event.shiftKey) props.onSize(column.name, narrow(column.width + by * sizeStep));
    else if (by) goTo(index + by);
    else if (event.key === 'Home') goTo(0);
    else if (event.key === 'End') goTo(props.columns.length - 1);
    else if ((event.key === 'Enter' || event.key === ' ') && column.sortable) props.onSort(column.name);
    else return;
    event.preventDefault();
  };
  const cell = (place: Place<Row>, kind: string, style: Record<string, number>) => {
    const { column, index } = place;
    const sorted = props.sort?.name === column.name;
    const direction = props.sort?.descending ? 'descending' : 'ascending';
    return (
      <div key={column.name} role="columnheader" aria-colindex={index + 2} data-column={index}
        aria-sort={sorted ? direction : undefined} tabIndex={index === props.at ? 0 : -1}
        class={`${kind}${column.numeric ? ' number' : ''}${column.sortable ? ' sorts' : ''}`}
        style={{ ...style, width: column.width }} title={column.caption} draggable
        onFocus={() => props.onAt(index)} onKeyDown={(event) => onKey(event, place)}
        onClick={() => column.sortable && props.onSort(column.name)}
        onDragStart={() => { dragged.current = column.name; }} onDragOver={(event) => event.preventDefault()}
        onDrop={(event) => { event.preventDefault(); props.onMove(dragged.current, column.name); }}>
        <span class="caption">{column.caption}</span>
        {sorted && <span aria-hidden="true">{props.sort?.descending ? '▾' : '▴'}</span>}
        <Grip width={column.width} onSize={(width) => props.onSize(column.name, width)} />
      </div>
    );
  };
  return (
    <div class="grid-head" role="rowgroup" ref={head} style={{ width: props.width }}>
      <div role="row" aria-rowindex={1}>
        <div class="mark" role="columnheader" aria-colindex={1}>
          <button type="button" class="plain" aria-label={words.selectAll} aria-pressed={props.all}
            onClick={props.onAll}>
            <span class={props.all ? 'box on' : 'box'} />
          </button>
        </div>
        {props.pins.map((pin) => cell(pin, 'pin', { left: pin.left }))}
        {props.cells.map((place) => cell(place, '', { marginInlineStart: place.gap }))}
      </div>
    </div>
  );
}

function Grip({ width, onSize }: { width: number; onSize: (width: number) => void }) {
  const from = useRef<{ x: number; width: number }>();
  return (
    <span class="grip" draggable onDragStart={(event) => { event.preventDefault(); event.stopPropagation(); }}
      onClick={(event) => event.stopPropagation()}
      onPointerDown={(event) => {
        event.preventDefault();
        event.stopPropagation();
        event.currentTarget.setPointerCapture(event.pointerId);
        from.current = { x: event.clientX, width };
      }}
      onPointerMove={(event) => from.current && onSize(narrow(from.current.width + event.clientX - from.current.x))}
      onPointerUp={() => { from.current = undefined; }} onPointerCancel={() => { from.current = undefined; }} />
  );
}
