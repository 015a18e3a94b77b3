// The columns of the list: those of the template, in the user's language.
import { caller, answerOf, door } from '../api/door.js';
import type { Column } from '../grid/grid.js';
import type { Place } from '../grid/layout.js';
import { linkTo } from '../shell/route.js';
import { language } from '../words/language.js';
import { columnWords } from './column_words.js';
import { sortable } from './filter.js';
import { cellText, kinds, type Row } from './row.js';

/** A column of the template. */
export interface Described {
  readonly key: string;
  readonly caption: string;
  readonly kind: number;
  readonly shown: boolean;
}

export async function askColumns(): Promise<Described[]> {
  const answer = await answerOf(door.POST('/api/v1/clsGetData/GetTemplateData', { body: { dctParam: {} } }));
  return (answer.result?.rows ?? [])
    .filter((row) => row.FPage === 1)
    .sort((a, b) => Number(a.FTabIndex) - Number(b.FTabIndex))
    .map((row) => ({
      key: String(row.FKey), caption: String(row.FCaption ?? ''), kind: Number(row.FCtlType), shown: row.FVisible === 1,
    }));
}

/** The template's own caption counts where it is in the language of the page. */
export function captionOf({ key, caption }: Described): string {
  const templates = caller.value?.language === 'CHT' ? 'zh-Hant' : 'zh-Hans';
  if (language.value === templates && caption) return caption;
  return columnWords[key as keyof typeof columnWords] ?? caption;
}

const widths: Readonly<Record<number, number>> = {
  [kinds.text]: 140, [kinds.number]: 104, [kinds.date]: 172, [kinds.mark]: 100,
};
const ownWidths: Readonly<Record<string, number>> = {
  FOrderID: 164, FSiteOrderID: 192, FUniqueCode: 228, FDeliveryAddress: 240, FItemSummary: 240, FConsignee: 96,
  FZipCode: 80, FWebshopID: 150, FOrderFlag: 64,
};
const usualWidth = 110;
/** Pinned until the user says otherwise. */
const firstPinned = 'FOrderID';

export function firstPlaces(columns: readonly Described[]): Place[] {
  return columns.map(({ key, kind, shown }) => ({
    name: key, shown, width: ownWidths[key] ?? widths[kind] ?? usualWidth, pinned: key === firstPinned,
  }));
}

export function columnsOf(described: readonly Described[], places: readonly Place[]): Column<Row>[] {
  const known = new Map(described.map((column) => [column.key, column]));
  const shown = places.flatMap((place) => {
    const column = known.get(place.name);
    return column && place.shown ? [{ place, column }] : [];
  });
  return [...shown.filter(({ place }) => place.pinned), ...shown.filter(({ place }) => !place.pinned)]
    .map(({ place: { name, width, pinned }, column }) => ({
      name, width, pinned, caption: captionOf(column), numeric: column.kind === kinds.number,
      sortable: sortable.some((key) => key === name), textOf: (row) => cellText(row, name, column.kind),
      ...(name === firstPinned ? { linkOf: (row: Row) => linkTo(`order/${row.FID}`) } : {}),
    }));
}
