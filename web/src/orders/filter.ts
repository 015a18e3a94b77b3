// Which orders the list shows. The link says it, so that it can be shared.
import { tabs, type Choice, type OrderFilter, type Tab } from '../api/workbench.js';
import { common } from '../words/common.js';
import { formatTime } from '../words/language.js';
import { codeOf } from './choices.js';
import { words } from './words.js';

type Key = Exclude<keyof OrderFilter, 'tab' | 'sort' | 'descending' | 'fields'>;
type Name = keyof typeof words;

/** One thing to filter by. */
export type Field =
  | { readonly kind: 'dates'; readonly name: Name; readonly keys: readonly [from: Key, to: Key] }
  | { readonly kind: 'choice'; readonly name: Name & Key; readonly from: Choice['FKind'] }
  | { readonly kind: 'text'; readonly name: Name & Key }
  | { readonly kind: 'flag' | 'yesNo'; readonly name: Name & Key };

export const fields: readonly Field[] = [
  { kind: 'dates', name: 'ordered', keys: ['orderedFrom', 'orderedTo'] },
  { kind: 'dates', name: 'paid', keys: ['paidFrom', 'paidTo'] },
  { kind: 'dates', name: 'sent', keys: ['sentFrom', 'sentTo'] },
  { kind: 'dates', name: 'pickedTime', keys: ['pickedFrom', 'pickedTo'] },
  { kind: 'dates', name: 'checkedTime', keys: ['checkedFrom', 'checkedTo'] },
  { kind: 'dates', name: 'weighedTime', keys: ['weighedFrom', 'weighedTo'] },
  { kind: 'choice', name: 'pickedBy', from: 'employee' },
  { kind: 'choice', name: 'checkedBy', from: 'user' },
  { kind: 'choice', name: 'weighedBy', from: 'user' },
  { kind: 'choice', name: 'sentBy', from: 'user' },
  { kind: 'choice', name: 'shop', from: 'shop' },
  { kind: 'choice', name: 'carrier', from: 'carrier' },
  { kind: 'choice', name: 'warehouse', from: 'warehouse' },
  { kind: 'choice', name: 'orderType', from: 'orderType' },
  { kind: 'text', name: 'buyer' },
  { kind: 'text', name: 'waybill' },
  { kind: 'text', name: 'text' },
  { kind: 'text', name: 'lot' },
  { kind: 'text', name: 'reason' },
  { kind: 'flag', name: 'flag' },
  { kind: 'yesNo', name: 'printedSlip' },
  { kind: 'yesNo', name: 'printedWaybill' },
  { kind: 'yesNo', name: 'checked' },
  { kind: 'yesNo', name: 'weighed' },
];

/** Conditions on fields of the template stand in the link as often as there are some: fields=FWeight>=1.5 */
export const fieldsKey = 'fields';

export const flags = ['0', '1', '2', '3', '4', '5'] as const;
export const sortable: readonly NonNullable<OrderFilter['sort']>[] = [
  'FID', 'FOrderID', 'FOrderDate', 'FSitePayDate', 'FSendDate', 'FAmount', 'FWeight', 'FConsignee', 'FBuyerNick',
  'FLogisticsOrder', 'FSerialNumber',
];
const firstTab: Tab = 'toBePicked';
/** What the link says for the orders of every state. */
export const anyTab = 'all';

export function keysOf(field: Field): readonly string[] {
  return field.kind === 'dates' ? field.keys : [field.name];
}

export function tabOf(query: URLSearchParams): Tab | undefined {
  const said = query.get('tab') ?? firstTab;
  return tabs.find((tab) => tab === said);
}

/** A day up to which orders are shown counts to its end. */
function endOf(day: string): string {
  return /^\d{4}-\d\d-\d\d$/.test(day) ? `${day}T23:59:59` : day;
}

/** A condition up to a day, to the day's end. */
function toEndOfDay(condition: string): string {
  return condition.replace(/(<=)(\d{4}-\d\d-\d\d)$/, (_, comparison: string, day: string) => comparison + endOf(day));
}

export function filterOf(query: URLSearchParams): OrderFilter {
  const filter: Record<string, string | number | boolean> = {};
  for (const field of fields) {
    for (const key of keysOf(field)) {
      const value = query.get(key);
      if (!value) continue;
      if (field.kind === 'choice' && field.from !== 'employee') filter[key] = Number(value);
      else if (field.kind === 'yesNo') filter[key] = value === 'true';
      else filter[key] = key.endsWith('To') ? endOf(value) : value;
    }
  }
  const conditions = query.getAll(fieldsKey);
  const tab = tabOf(query);
  const sort = sortable.find((name) => name === query.get('sort'));
  return {
    ...filter, ...(conditions.length ? { fields: conditions.map(toEndOfDay) } : {}), ...(tab ? { tab } : {}), ...(sort ? { sort } : {}),
    ...(query.get('descending') ? { descending: true } : {}),
  };
}

const timeText = (value: string) => formatTime(value, value.includes('T') ? 'both' : 'date');

/** What a field filters by, in words; "" when it does not. */
export function saidOf(field: Field, query: URLSearchParams, choices: readonly Choice[]): string {
  const values = keysOf(field).map((key) => query.get(key) ?? '');
  if (!values.some(Boolean)) return '';
  const [value = '', to = ''] = values;
  switch (field.kind) {
    case 'dates': return `${timeText(value)} – ${timeText(to)}`;
    case 'choice':
      return choices.find((choice) => choice.FKind === field.from && codeOf(choice) === value)?.FName ?? value;
    case 'yesNo': return value === 'true' ? common.yes : common.no;
    default: return value;
  }
}

export function without(query: URLSearchParams, names: readonly string[]): URLSearchParams {
  const rest = new URLSearchParams(query);
  names.forEach((name) => rest.delete(name));
  return rest;
}
