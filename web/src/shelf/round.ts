// A round at the shelves: the lines in walking order, what became of each, and what is complete at the end.
import { answerOf, door, newKey, type Schemas } from '../api/door.js';
import { pickRows } from '../prints/data.js';
import { groupBy, rowsOf } from '../scan/data.js';
import { keptSignal } from '../scan/kept.js';
import { write } from '../scan/waiting.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

type PrintRow = Schemas['GetPrintRecordsetForPickRow'];

/** What one order needs of a line. */
export interface Need {
  readonly order: number;
  readonly entry: number;
  readonly wanted: number;
  readonly place: number;
}

export interface Line {
  readonly stock: number;
  readonly stockName: string;
  readonly place: string;
  readonly placeName: string;
  readonly number: string;
  readonly name: string;
  readonly attribute: string;
  readonly barCode: string;
  readonly unit: string;
  readonly batch: string;
  readonly wanted: number;
  readonly gift: boolean;
  readonly remarks: readonly string[];
  readonly serials: string;
  readonly needs: readonly Need[];
  /** How many were picked; nothing while the line is open. */
  readonly found?: number;
  readonly skipped?: boolean;
}

export interface RoundOrder {
  readonly order: number;
  readonly name: string;
  /** Numbers on its papers and its parcel. */
  readonly numbers: readonly string[];
  readonly pickRemark: string;
}

export interface Round {
  readonly lines: readonly Line[];
  readonly orders: readonly RoundOrder[];
  readonly at: number;
  readonly confirmed?: boolean;
}

/** The round that is under way; it survives a reload. */
export const round = keptSignal<Round | null>('tessarlorn.round', null);
export const picker = keptSignal('tessarlorn.picker', '');

/** The stock places of the lines by their keys: saving a batch number stores them too. */
async function placesOf(orders: readonly number[]): Promise<Map<number, number>> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetBatchNo', {
    body: { dctPara: { FID: orders.join(',') } },
  }));
  return new Map((result?.rows ?? []).map((row) => [row.FEntryID ?? 0, row.FSPID ?? 0]));
}

/**
 * Rows with the same text are collected in one. They are collected here and not by the server, because it has to be
 * known which order a short line is of.
 */
function sameItem(row: PrintRow): string {
  const parts = [row.FStockID, row.FSPNumber, row.FNumber, row.FAttrName, row.FUnitName, row.FBatchNo];
  return JSON.stringify(parts.map((part) => part ?? ''));
}

/** @param from rows of the same item */
function lineOf(from: readonly PrintRow[], places: ReadonlyMap<number, number>): Line {
  const row = from[0]!;
  const remarks = from.flatMap((part) => [part.FPickRem, part.FSellerMessage, part.FBuyerMessage]);
  return {
    stock: row.FStockID ?? 0,
    stockName: row.FStockName ?? '',
    place: row.FSPNumber ?? '',
    placeName: row.FSPName ?? '',
    number: row.FNumber ?? '',
    name: row.FItemName ?? '',
    attribute: [row.FModel, row.FAttrName].filter(Boolean).join(' '),
    barCode: row.FBarCode ?? '',
    unit: row.FUnitName ?? '',
    batch: row.FBatchNo ?? '',
    wanted: from.reduce((all, part) => all + Number(part.FQuantity), 0),
    gift: from.some((part) => part.FIsFree),
    remarks: [...new Set(remarks.filter((text): text is string => Boolean(text)))],
    serials: from.map((part) => part.FSerialNumber).filter(Boolean).join(', '),
    needs: from.map((part) => ({
      order: part.FID ?? 0,
      entry: part.FEntryID ?? 0,
      wanted: Number(part.FQuantity),
      place: places.get(part.FEntryID ?? 0) ?? 0,
    })),
  };
}

/** @return whether there is anything to be picked */
export async function beginRound(orders: readonly number[], collected: boolean): Promise<boolean> {
  const [rows, places, heads] = await Promise.all([pickRows(orders, 0), placesOf(orders), rowsOf(orders)]);
  const groups = collected ? [...groupBy(rows, sameItem).values()] : rows.map((row) => [row]);
  const lines = groups.map((group) => lineOf(group, places));
  if (!lines.length) return false;
  const picked = new Set(rows.map((row) => row.FID));
  round.value = {
    lines,
    at: 0,
    orders: heads.filter(({ FID }) => picked.has(FID)).map((head) => ({
      order: head.FID,
      name: String(head['FOrderID']),
      numbers: [head['FOrderID'], head['FUniqueCode'], head['FLogisticsOrder']].map(String).filter(Boolean),
      pickRemark: String(head['FPickRem'] ?? ''),
    })),
  };
  return true;
}

function replaced({ lines, at }: Round, line: Line): Line[] {
  return lines.map((other, index) => (index === at ? line : other));
}

/** Notes what became of the line, and goes to the next one that is open. */
export function settle(changed: Partial<Line>): void {
  const now = round.value;
  if (!now) return;
  const { skipped, ...rest } = now.lines[now.at]!;
  const lines = replaced(now, { ...rest, ...changed });
  const next = lines.findIndex((line, index) => index > now.at && line.found === undefined);
  round.value = { ...now, lines, at: next < 0 ? lines.length : next };
}

export function goTo(at: number): void {
  if (round.value) round.value = { ...round.value, at: Math.max(0, at) };
}

export function goToSkipped(): void {
  goTo(round.value?.lines.findIndex((line) => line.found === undefined) ?? 0);
}

/** Whether a scan names the line: its place, its article, or the parcel or papers of its order. */
export function names(code: string, line: Line, orders: readonly RoundOrder[]): boolean {
  const own = new Set(line.needs.map((need) => need.order));
  const numbers = orders.filter(({ order }) => own.has(order)).flatMap((order) => order.numbers);
  return [line.place, line.placeName, line.number, line.barCode, ...numbers].includes(code);
}

/** What each need of a line got: the first in walking order gets first. */
function shares(line: Line): { need: Need; got: number }[] {
  let left = line.found ?? 0;
  return line.needs.map((need) => {
    const got = Math.min(need.wanted, left);
    left -= got;
    return { need, got };
  });
}

export interface Outcome {
  readonly complete: readonly RoundOrder[];
  readonly short: readonly { order: RoundOrder; missing: readonly { line: Line; got: number; wanted: number }[] }[];
  readonly open: number;
}

export function outcomeOf({ lines, orders }: Round): Outcome {
  const missing = lines.flatMap((line) => shares(line)
    .filter(({ need, got }) => got < need.wanted)
    .map(({ need, got }) => ({ order: need.order, line, got, wanted: need.wanted })));
  const ofOrder = groupBy(missing, ({ order }) => order);
  return {
    complete: orders.filter(({ order }) => !ofOrder.has(order)),
    short: orders
      .filter(({ order }) => ofOrder.has(order))
      .map((order) => ({ order, missing: ofOrder.get(order.order)! })),
    open: lines.filter((line) => line.found === undefined).length,
  };
}

/** Confirming stores the picking remark too, so orders with different ones go one by one. */
export function confirmRound(complete: readonly RoundOrder[]): void {
  for (const [remark, orders] of groupBy(complete, ({ pickRemark }) => pickRemark)) {
    const job = { kind: 'confirm', orders: orders.map(({ order }) => order), picker: picker.value, remark } as const;
    write(job, fill(words.confirmOf, { orders: orders.length }), newKey());
  }
  if (round.value) round.value = { ...round.value, confirmed: true };
}

export function saveBatch(batch: string): void {
  const now = round.value;
  const line = now?.lines[now.at];
  if (!now || !line) return;
  const lines = line.needs.map(({ entry, place }) => ({ entry, stock: line.stock, place }));
  write({ kind: 'batch', lines, batch }, fill(words.batchOf, { article: line.name }));
  round.value = { ...now, lines: replaced(now, { ...line, batch }) };
}
