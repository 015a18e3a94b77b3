// The writes of scans: what each is, and how it is sent. Each is made once, by the key that its scan got.
import { answerOf, door, DoorError } from '../api/door.js';
import { ask, askRows } from '../api/workbench.js';
import { fill } from '../words/language.js';
import { noteSent } from './shift.js';
import { words } from './words.js';

/** What an order was before this machine changed it. */
export interface Before {
  readonly checked: boolean;
  readonly weighed: boolean;
  readonly weight: number;
  readonly cost: number;
}

export interface Weight {
  readonly order: number;
  readonly weight: number;
  readonly cost: number;
  readonly weighed: boolean;
}

export type Job =
  | { readonly kind: 'check' | 'uncheck'; readonly order: number }
  | ({ readonly kind: 'weigh' } & Weight)
  /** A parcel that was scanned while the server could not be reached. */
  | {
      readonly kind: 'parcel';
      readonly number: string;
      readonly weight: number | undefined;
      readonly tolerance: number;
    }
  | {
      readonly kind: 'batch';
      readonly lines: readonly { entry: number; stock: number; place: number }[];
      readonly batch: string;
    }
  | {
      readonly kind: 'confirm';
      readonly orders: readonly number[];
      readonly picker: string;
      readonly remark: string;
      /** Those that may go, once that was asked. */
      readonly passed?: string;
    };

/** How a job is sent: by whom, with which key, and how it is kept again with what was found out. */
export interface Sending {
  readonly user: number;
  readonly key: string;
  readonly keep: (job: Job) => void;
}

/** Raised when the data forbid a job. */
export class Stopped extends Error {}

const once = (key: string) => ({ header: { 'Idempotency-Key': key } });

/** What stops orders, in words; "" when nothing does. */
export async function whatStops(orders: readonly number[], state: number): Promise<{ passed: string; why: string }> {
  const { result, notFound } = await answerOf(door.POST('/api/v1/clsGetData/CheckBillStatus', {
    body: { dctPara: { FID: orders.join(','), FOrderStatus: state } },
  }));
  const reasons: [string, string | null | undefined][] = [
    [words.refund, result?.Refund], [words.closed, result?.Closed], [words.locked, result?.Locked],
    [words.unchecked, result?.Unchecked], [words.wrongState, result?.WrongStatus],
    [words.notThere, notFound?.join(',')],
  ];
  const why = reasons
    .filter(([, named]) => named)
    .map(([text, named]) => fill(text, { orders: named!.replaceAll(',', ', ') }));
  return { passed: result?.Pass ?? '', why: why.join(' ') };
}

/** How far a weight is from what was expected, in percent; 0 when nothing was expected. */
export function deviation(weight: number, expected: number): number {
  return expected > 0 ? (Math.abs(weight - expected) / expected) * 100 : 0;
}

/** The order of a number that stands on a parcel or its papers. */
export async function orderOf(number: string): Promise<number> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/GetOrderInfoByLogisticsOrder', {
    body: { dctPara: { FLogisticsOrder: number } },
  }));
  if (result?.FID) {
    if ((result.Count ?? 1) > 1) throw new Stopped(fill(words.several, { number }));
    return result.FID;
  }
  const found = (await ask('find', { text: number })).filter((order) =>
    [order.FOrderID, order.FSiteOrderID, order.FLogisticsOrder, order.FUniqueCode].includes(number));
  if (found.length > 1) throw new Stopped(fill(words.several, { number }));
  if (!found[0]) throw new Stopped(fill(words.unknown, { number }));
  return found[0].FID;
}

export type Row = Awaited<ReturnType<typeof ask<'rows'>>>[number];

export async function rowOf(order: number): Promise<Row> {
  const [row] = await askRows([order]);
  if (!row) throw new Stopped(fill(words.notThere, { orders: String(order) }));
  return row;
}

export function beforeOf(row: Row): Before {
  return {
    checked: row['FPIckingGoodsStatus'] === 'Y',
    weighed: row['FWeighttingStatus'] === 'Y',
    weight: Number(row['FWeight']),
    cost: Number(row['FLogisticsCost']),
  };
}

export async function expectedWeight(order: number): Promise<number> {
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/NewGetWeightByFID', { body: { sFID: order } }));
  return result?.FWeight ?? 0;
}

async function check(order: number, { user, key }: Sending): Promise<void> {
  await answerOf(door.POST('/api/v1/clsSaveData/MarkPickingGoodsStatus', {
    params: once(key), body: { dctPara: { FID: order, UserId: user } },
  }));
}

async function weigh({ order, weight, cost, weighed }: Weight, { user, key }: Sending): Promise<void> {
  const entry = {
    FID: order, FWeight: weight, FLogisticsCost: cost,
    FWeighttingMan: weighed ? user : 0, FWeighttingStatus: weighed ? 1 : 0,
  };
  await answerOf(door.POST('/api/v1/clsSaveData/SaveLogWeight', { params: once(key), body: { vctPara: [entry] } }));
}

async function parcel(job: Job & { kind: 'parcel' }, sending: Sending): Promise<void> {
  const order = await orderOf(job.number);
  const { why } = await whatStops([order], 6);
  if (why) throw new Stopped(why);
  const row = await rowOf(order);
  const before = beforeOf(row);
  const { weight } = job;
  if (weight !== undefined && deviation(weight, await expectedWeight(order)) > job.tolerance) {
    throw new Stopped(words.weighAgain);
  }
  await check(order, { ...sending, key: `${sending.key}-check` });
  if (weight !== undefined) {
    await weigh({ order, weight, cost: before.cost, weighed: true }, { ...sending, key: `${sending.key}-weigh` });
  }
  noteSent(sending.key, { order, name: String(row['FOrderID']), before });
}

async function confirm(job: Job & { kind: 'confirm' }, { key, keep }: Sending): Promise<void> {
  let { passed } = job;
  if (passed === undefined) {
    const asked = await whatStops(job.orders, 2);
    passed = asked.passed;
    if (asked.why && !passed) throw new Stopped(asked.why);
    keep({ ...job, passed });
  }
  await answerOf(door.POST('/api/v1/clsSaveData/ConfirmBill', {
    params: once(key), body: { dctPara: { FID: passed, FPickManNumber: job.picker, FPickRem: job.remark } },
  }));
  const left = job.orders.filter((order) => !passed.split(',').includes(String(order)));
  if (left.length) throw new Stopped(fill(words.othersDone, { why: (await whatStops(left, 2)).why }));
}

export async function send(job: Job, sending: Sending): Promise<void> {
  switch (job.kind) {
    case 'check':
      return check(job.order, sending);
    case 'uncheck':
      await answerOf(door.POST('/api/v1/clsSaveData/ClearPickingGoodsStatus', {
        params: once(sending.key), body: { dctPara: { FID: job.order, UserId: sending.user } },
      }));
      return;
    case 'weigh':
      return weigh(job, sending);
    case 'parcel':
      return parcel(job, sending);
    case 'batch':
      await answerOf(door.POST('/api/v1/clsSaveData/SaveBatchNo', {
        params: once(sending.key),
        body: {
          vctPara: job.lines.map(({ entry, stock, place }) => (
            { FEntryID: entry, FStockID: stock, SPID: place, FBatchNo: job.batch }
          )),
        },
      }));
      return;
    case 'confirm':
      return confirm(job, sending);
  }
}

/** Whether a job may go well when it is sent again. 409 says that the same key is under way. */
export function again(error: unknown): boolean {
  return error instanceof DoorError && (error.passing || error.status === 401 || error.status === 409);
}
