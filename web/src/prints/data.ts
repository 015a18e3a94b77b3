// What the prints show.
import { answerOf, door, newKey, type Schemas } from '../api/door.js';
import { ask } from '../api/workbench.js';
import { rowsOf } from '../scan/data.js';
import type { Row } from '../scan/jobs.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

export type PickRow = Schemas['GetPrintRecordsetForPickRow'] & { FOrders?: number; FSerialNumbers?: string };
export type NoteRow = Schemas['GetPrintRecordsetForDeliveryRow'];

export const kinds = ['pick', 'collected', 'note', 'list', 'label'] as const;
export type Kind = (typeof kinds)[number];

/** Documents whose prints are counted and may be limited. Labels are not. */
export const documents: Partial<Record<Kind, number>> = { pick: 10143011, collected: 10143011, note: 10143012, list: 10143014 };

/** As many keys as the server takes at once. */
const mostKeys = 500;

/** Everything that one print shows; each kind fills what it needs. */
export interface Material {
  readonly keys: readonly number[];
  /** Orders that were printed as often as allowed, in words. */
  readonly leftOut: readonly string[];
  /** Orders of which nothing is picked, by number. */
  readonly nothingToPick: readonly string[];
  /** Orders that are locked, not there, or not for this user, by number where there is one. */
  readonly missing: readonly string[];
  readonly pick: readonly PickRow[];
  readonly collected: readonly PickRow[];
  readonly notes: readonly NoteRow[];
  readonly totals: ReadonlyMap<number, number>;
  readonly rows: readonly Row[];
}

/** The orders' numbers, where they can be seen; else their keys. */
async function namesOf(keys: readonly number[]): Promise<string[]> {
  if (!keys.length) return [];
  const found = await ask('states', { keys: keys.slice(0, mostKeys) });
  const names = new Map(found.map(({ FID, FOrderID }) => [FID, FOrderID]));
  return keys.map((key) => names.get(key) ?? String(key));
}

async function overLimit(keys: readonly number[], kind: Kind): Promise<Map<string, string>> {
  const type = documents[kind];
  if (!type) return new Map();
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetOverMaxPrintCountBillInfo', {
    body: { dctPara: { FID: keys.join(','), PrintID: type } },
  }));
  return new Map((result ?? []).map((found: Record<string, string | number>) => {
    const times = Object.entries(found).find(([name]) => /^FPrint\w+/.test(name) && name !== 'FPrintMaxCount')?.[1];
    const order = String(found['FOrderID']);
    return [order, fill(words.timesOf, { order, times: String(times), most: String(found['FPrintMaxCount']) })];
  }));
}

export async function pickRows(keys: readonly number[], mode: 0 | 1): Promise<PickRow[]> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetPrintRecordsetForPick', {
    body: { dctParam: { FID: keys.join(','), Mode: mode } },
  }));
  return result?.rows ?? [];
}

async function noteRows(keys: readonly number[]): Promise<NoteRow[]> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetPrintRecordsetForDelivery', {
    body: { dctParam: { FID: keys.join(',') } },
  }));
  return result?.rows ?? [];
}

/** The totals come in no certain order, so each order is asked by itself. */
async function totalsOf(keys: readonly number[]): Promise<Map<number, number>> {
  const { orders } = await answerOf(door.POST('/api/v1/clsGetData/GetSumRecordsetDataForDelivery', {
    params: { query: { each: 'order' } }, body: { dctParam: { FID: keys.join(',') } },
  }));
  const totals = (orders ?? []).map(({ order, result }) => [order, result?.rows[0]?.FTotalAmount ?? 0]);
  return new Map(totals.map(([order, total]) => [Number(order), Number(total)]));
}

/** The orders that a link names, by keys or by lot. */
export async function keysOf(query: URLSearchParams): Promise<number[]> {
  const keys = (query.get('keys') ?? '').split(',').map(Number).filter(Boolean);
  const lot = query.get('lot');
  const ofLot = lot ? await ask('orders', { lot }) : [];
  return [...new Set([...keys, ...ofLot.map(({ FID }) => FID)])];
}

export async function materialOf(asked: readonly number[], kind: Kind): Promise<Material> {
  const nothing: Material = { keys: [], leftOut: [], nothingToPick: [], missing: [], pick: [], collected: [], notes: [], totals: new Map(), rows: [] };
  if (!asked.length) return nothing;
  // Locked orders are not in the list either.
  const [over, all] = await Promise.all([overLimit(asked, kind), rowsOf(asked)]);
  const rows = all.filter((row) => !over.has(String(row['FOrderID'])));
  const keys = rows.map(({ FID }) => FID);
  const known = new Set(all.map(({ FID }) => FID));
  const missing = await namesOf(asked.filter((key) => !known.has(key)));
  const found = { ...nothing, keys, rows, missing, leftOut: [...over.values()] };
  if (!keys.length) return found;
  switch (kind) {
    case 'pick': {
      const pick = await pickRows(keys, 0);
      const picked = new Set(pick.map(({ FID }) => FID));
      const nothingToPick = rows.filter(({ FID }) => !picked.has(FID)).map((row) => String(row['FOrderID']));
      return { ...found, pick, nothingToPick, keys: keys.filter((key) => picked.has(key)) };
    }
    case 'collected':
      return { ...found, collected: await pickRows(keys, 1) };
    case 'note': {
      const [notes, totals] = await Promise.all([noteRows(keys), totalsOf(keys)]);
      return { ...found, notes, totals };
    }
    default:
      return found;
  }
}

/** How far a count is, so that another try goes on there, with the same key where an answer was lost. */
export interface Counting {
  through: number;
  counted: number;
  key: string;
}

export function newCounting(): Counting {
  return { through: 0, counted: 0, key: newKey() };
}

/** Counts a print of each of the orders. @return how many were counted */
export async function countPrints(kind: Kind, keys: readonly number[], counting: Counting): Promise<number> {
  const document = documents[kind];
  for (let start = counting.through; document && start < keys.length; start += mostKeys) {
    const asked = { document, keys: keys.slice(start, start + mostKeys) };
    const counted = await ask('countPrints', asked, undefined, counting.key);
    counting.counted += counted.length;
    counting.through = start + mostKeys;
    counting.key = newKey();
  }
  return counting.counted;
}

/** Gives the orders a new lot, and serial numbers in the order of the keys. @return the lot */
export async function giveNumbers(keys: readonly number[], key = newKey()): Promise<string> {
  await answerOf(door.POST('/api/v1/clsSaveData/SavePrintSerialNumber', {
    params: { header: { 'Idempotency-Key': key } }, body: { vctOrderInfo: keys.map((FID) => ({ FID })) },
  }));
  const [row] = await ask('rows', { keys: keys.slice(0, 1) });
  return String(row?.['FLotNumber'] ?? '');
}
