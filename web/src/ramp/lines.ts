// The lines of a pasted table, and what is wrong with each.
import type { OperationName } from '../api/door.js';
import type { Row } from '../api/workbench.js';
import { delivered, toBeDelivered } from '../orders/row.js';
import { deviation } from '../scan/jobs.js';
import { stateWords } from '../steps/state_words.js';
import { fill, formatNumber } from '../words/language.js';
import { hasHeads, type Columns, type Field } from './columns.js';
import { words } from './words.js';

/** An order that has a number that was asked for. */
export type Parcel = Row<'parcels'>;

export const stageNames = ['setNumber', 'markWeighed', 'deliver'] as const;
export type StageName = (typeof stageNames)[number];
export const operations: Readonly<Record<StageName, OperationName>> = {
  setNumber: 'SetUpLogisticsNumberAndWeight', markWeighed: 'UpdateLogisticsWeightStatus', deliver: 'Delivery',
};

export interface Line {
  /** Its place in the table, from 1. */
  readonly at: number;
  readonly texts: Readonly<Record<Field, string>>;
}

/** What the server knows of the numbers of a table. */
export interface Known {
  /** By number; not there while it was not asked for. */
  readonly parcels: ReadonlyMap<string, readonly Parcel[]>;
  /** Expected weights, by order. */
  readonly weights: ReadonlyMap<number, number>;
}

export interface Judged extends Line {
  readonly parcel?: Parcel;
  readonly weight?: number;
  readonly cost?: number;
  readonly errors: readonly string[];
  readonly warnings: readonly string[];
}

const mostWeight = 1000;
const toleratedPercent = 20;

export function linesOf(table: readonly (readonly string[])[], columns: Columns): Line[] {
  const textOf = (row: readonly string[], field: Field) => row[columns.indexOf(field)] ?? '';
  return table.map((row, index) => ({
    at: index + 1,
    texts: {
      number: textOf(row, 'number'), waybill: textOf(row, 'waybill'), weight: textOf(row, 'weight'),
      cost: textOf(row, 'cost'),
    },
  })).slice(hasHeads(table) ? 1 : 0);
}

/** A number with a point or a comma before its decimals; NaN for anything else. */
function amountOf(text: string): number {
  const bare = text.replace(/^[¥￥$€]|\s|kg$|千克$|公斤$|元$/gi, '');
  return /^\d+([.,]\d+)?$/.test(bare) ? Number(bare.replace(',', '.')) : NaN;
}

/** 1,234 may be a little more than one, or more than a thousand; a weight cannot be the latter. */
const unclear = /^\D?\d{1,3},\d{3}\D*$/;

function weightOf({ texts: { weight: value } }: Line, errors: string[]): number | undefined {
  if (!value) return undefined;
  const weight = amountOf(value);
  if (weight > 0 && weight <= mostWeight) return weight;
  errors.push(fill(words.badWeight, { value }));
  return undefined;
}

function costOf({ texts: { cost: value } }: Line, errors: string[]): number | undefined {
  if (!value) return undefined;
  const cost = amountOf(value);
  if (unclear.test(value)) errors.push(fill(words.unclear, { value }));
  else if (cost >= 0) return cost;
  else errors.push(fill(words.badCost, { value }));
  return undefined;
}

function findParcel(number: string, known: Known, errors: string[]): Parcel | undefined {
  if (!number) errors.push(words.noNumber);
  const found = known.parcels.get(number);
  if (!found) return undefined;
  if (found.length === 1) return found[0];
  if (found.length) errors.push(fill(words.several, { orders: found.map(({ FOrderID }) => FOrderID).join(', ') }));
  else errors.push(/^\d(\.\d+)?E\+\d+$/i.test(number) ? words.shortened : words.unknown);
  return undefined;
}

function judgeState(
  { FOrderStatus }: Parcel, stages: readonly StageName[], errors: string[], warnings: string[],
): void {
  const state = stateWords(FOrderStatus);
  if (FOrderStatus === delivered && !stages.includes('deliver')) warnings.push(fill(words.already, { state }));
  else if (FOrderStatus !== toBeDelivered) errors.push(fill(words.wrongState, { state }));
}

/** Where orders and waybills were seen first. */
interface Seen {
  readonly orders: Map<number, number>;
  readonly waybills: Map<string, number>;
}

function judgeWaybill(
  { at, texts: { waybill } }: Line, parcel: Parcel | undefined, known: Known, seen: Seen,
  errors: string[], warnings: string[],
): void {
  const first = seen.waybills.get(waybill);
  if (first !== undefined) errors.push(fill(words.waybillTwice, { line: first }));
  else seen.waybills.set(waybill, at);
  const other = known.parcels.get(waybill)
    ?.find((some) => some.FLogisticsOrder === waybill && some.FID !== parcel?.FID);
  if (other) errors.push(fill(words.waybillElsewhere, { order: other.FOrderID }));
  const before = parcel?.FLogisticsOrder;
  if (before && before !== waybill) warnings.push(fill(words.replaces, { waybill: before }));
}

function judge(line: Line, known: Known, stages: readonly StageName[], seen: Seen): Judged {
  const errors: string[] = [];
  const warnings: string[] = [];
  const parcel = findParcel(line.texts.number, known, errors);
  const weight = weightOf(line, errors);
  const cost = costOf(line, errors);
  if (parcel) {
    const first = seen.orders.get(parcel.FID);
    if (first !== undefined) errors.push(fill(words.twice, { line: first }));
    else seen.orders.set(parcel.FID, line.at);
    judgeState(parcel, stages, errors, warnings);
    const expected = known.weights.get(parcel.FID) ?? 0;
    const percent = weight === undefined ? 0 : deviation(weight, expected);
    if (percent > toleratedPercent) {
      const values = { percent: formatNumber(percent, 0), expected: formatNumber(expected, 3) };
      warnings.push(fill(words.deviates, values));
    }
    if (stages.includes('markWeighed') && !weight && !Number(parcel.FWeight)) errors.push(words.noWeight);
  }
  const { texts } = line;
  if (stages.includes('setNumber')) {
    if (texts.waybill) judgeWaybill(line, parcel, known, seen, errors, warnings);
    if (!texts.waybill && !texts.weight && !texts.cost) errors.push(words.nothingToStore);
  }
  return {
    ...line, errors, warnings, ...(parcel ? { parcel } : {}), ...(weight === undefined ? {} : { weight }),
    ...(cost === undefined ? {} : { cost }),
  };
}

export function judgeAll(lines: readonly Line[], known: Known, stages: readonly StageName[]): Judged[] {
  const seen: Seen = { orders: new Map(), waybills: new Map() };
  return lines.map((line) => judge(line, known, stages, seen));
}

export function canBeDone(line: Judged): line is Judged & { parcel: Parcel } {
  return line.parcel !== undefined && line.errors.length === 0;
}
