// Outside warehouses, and their orders by what can be done with them.
import { answerOf, caller, door } from '../api/door.js';
import { ask } from '../api/workbench.js';
import { keysOf, together, type Call, type Work } from '../orders/work.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

export interface Warehouse {
  /** The provider's type number. */
  readonly type: number;
  readonly id: string;
  readonly name: string;
  /** Of the ERP; 0 for none. */
  readonly stock: number;
}

export const groupNames = ['able', 'refused', 'submitted', 'returnable'] as const;
export type GroupName = (typeof groupNames)[number];
export type Orders = Readonly<Record<GroupName, readonly number[]>>;

/** State at the outside warehouse. */
const taken = 1;
const refused = 2;
const submitted = 3;
const block = 500;

async function namesOf(type: number): Promise<[id: string, name: string][]> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetTplStock', {
    body: { dctPara: { FWebtplType: type }, bIsBad: true },
  }));
  return (result?.rows ?? []).map((row) => [String(row.FWebtplID), String(row.FWebtplName ?? '')]);
}

export async function askWarehouses(): Promise<Warehouse[]> {
  const [companies, stocks] = await Promise.all([
    answerOf(door.POST('/api/v1/clsGetData/GetTplCompany', { body: { dctPara: {} } })),
    answerOf(door.GET('/api/v1/clsGetData/GetTplCompanyNew')),
  ]);
  const ofProviders = await Promise.all((companies.result?.rows ?? []).map(async (provider) => {
    const type = Number(provider.FWebTplType);
    return (await namesOf(type)).map(([id, name]) => {
      const own = (stocks.result ?? []).find((known) => known.FWebtplType === type && known.FWebtplID === id);
      return { type, id, name: `${provider.FWebTplName ?? ''} · ${name || id}`, stock: own?.FStockID ?? 0 };
    });
  }));
  return ofProviders.flat();
}

/** Asks in blocks for those of the orders that an operation names. */
async function choose(
  keys: readonly number[], call: (list: string) => Promise<{ result?: string | null | undefined }>,
): Promise<number[]> {
  const chosen: number[] = [];
  for (let at = 0; at < keys.length; at += block) {
    const { result } = await call(keys.slice(at, at + block).join());
    chosen.push(...keysOf(result ?? ''));
  }
  return chosen;
}

export async function askOrders({ type, id, stock }: Warehouse): Promise<Orders> {
  const keysFor = async (filter: Parameters<typeof ask<'orders'>>[1]) => (
    (await ask('orders', filter)).map(({ FID }) => FID)
  );
  const [picking, ready, failed, atIt, sent] = await Promise.all([
    keysFor({ tab: 'toBePicked' }), keysFor({ tab: 'toBeDelivered' }), keysFor({ outside: refused }),
    keysFor({ outside: taken }), stock ? keysFor({ outside: submitted, warehouse: stock }) : [],
  ]);
  const open = stock ? await choose([...picking, ...ready], (sFID) => answerOf(
    door.POST('/api/v1/clsGetData/GetTplOrderInfo', { body: { sFID, dicWebToStorage: { FStockID: stock } } }),
  )) : [];
  const returnable = await choose(atIt, (sFID) => answerOf(
    door.POST('/api/v1/clsGetData/GetCancelTplOrderInfo', { body: { sFID, tplType: type, tplStockID: id } }),
  ));
  const again = new Set(failed);
  return {
    able: open.filter((key) => !again.has(key)), refused: open.filter((key) => again.has(key)),
    submitted: sent, returnable,
  };
}

/** A task is made for each block of orders. */
function submit({ type, id }: Warehouse): Call {
  return (sFID, _, { params: { header } }) => together(sFID, door.POST('/api/v1/clsSaveData/SubMitTplOrderTask', {
    params: header ? { header } : {},
    body: { sFID, tplType: type, sUserName: caller.value?.user ?? '', sWebTplID: id },
  }));
}

export function submitWork(
  warehouse: Warehouse, step: string, keys: readonly number[], nameOf: Work['nameOf'],
): Work {
  return {
    title: fill(words.title, { step, warehouse: warehouse.name, count: keys.length }), keys, nameOf,
    stages: [{ name: step, call: submit(warehouse) }],
  };
}
