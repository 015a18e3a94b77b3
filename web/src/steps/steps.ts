// The steps that orders can take: in which states, what they ask for, the operation, and what takes them back.
import { caller, door, type OperationName, type Problem } from '../api/door.js';
import { delivered, isUploaded, textOf, toBeDelivered, toBePicked, type Row } from '../orders/row.js';
import { words } from './words.js';

export type Values = Readonly<Record<string, string>>;

type Name = keyof typeof words;

export type Field =
  | { readonly kind: 'employee' | 'carrier' | 'warehouse'; readonly name: Name }
  | { readonly kind: 'text' | 'long' | 'amount' | 'mark'; readonly name: Name; readonly optional?: boolean };

/** How a call is made. */
export interface How {
  readonly params: {
    readonly query: { readonly each: 'order'; readonly 'dry-run'?: boolean };
    readonly header?: { readonly 'Idempotency-Key': string };
  };
}

/** What a call that is made for each order by itself answers. */
export interface EachAnswer {
  readonly orders?: readonly { readonly order: string; readonly result?: boolean; readonly problem?: Problem }[];
  readonly notFound?: readonly string[];
}

type Call = Promise<{ data?: EachAnswer; error?: unknown; response: Response }>;

/** Orders that take a step back with the same values. */
export interface Undo {
  readonly step: Step;
  readonly keys: readonly number[];
  readonly values: Values;
}

export interface Step {
  readonly name: Name;
  readonly operation: OperationName;
  /** FOrderStatus; any when not given. */
  readonly states?: readonly number[];
  readonly fields: readonly Field[];
  readonly note?: Name;
  /** Whether CheckBillStatus is asked first. */
  readonly checksBill?: boolean;
  /** Why the step changes nothing for an order. */
  readonly idle?: (row: Row) => string | undefined;
  readonly call: (keys: string, values: Values, how: How) => Call;
  /** What takes it back, from the orders as they were. */
  readonly undo?: (rows: readonly Row[]) => Undo[];
}

/** One call takes back all orders that had the same values. */
function grouped(step: () => Step, valuesOf: (row: Row) => Values): (rows: readonly Row[]) => Undo[] {
  return (rows) => {
    const groups = new Map<string, { step: Step; keys: number[]; values: Values }>();
    for (const row of rows) {
      const values = valuesOf(row);
      const name = JSON.stringify(values);
      const group = groups.get(name) ?? { step: step(), keys: [], values };
      group.keys.push(row.FID);
      groups.set(name, group);
    }
    return [...groups.values()];
  };
}

const user = () => caller.value?.erpUser ?? 0;
const isChecked = (row: Row) => row['FPIckingGoodsStatus'] === 'Y';

const pick: Step = {
  name: 'pick',
  operation: 'ConfirmBill',
  states: [toBePicked],
  fields: [{ kind: 'employee', name: 'picker' }, { kind: 'text', name: 'remark', optional: true }],
  call: (FID, { picker = '', remark = '' }, how) => door.POST('/api/v1/clsSaveData/ConfirmBill', {
    ...how, body: { dctPara: { FID, FPickManNumber: picker, FPickRem: remark } },
  }),
  undo: grouped(() => backToPicking, () => ({})),
};

const check: Step = {
  name: 'check',
  operation: 'MarkPickingGoodsStatus',
  states: [toBeDelivered],
  fields: [],
  idle: (row) => (isChecked(row) ? words.alreadyChecked : undefined),
  call: (FID, _, how) => door.POST('/api/v1/clsSaveData/MarkPickingGoodsStatus', {
    ...how, body: { dctPara: { FID, UserId: user() } },
  }),
  undo: grouped(() => clearCheck, () => ({})),
};

const clearCheck: Step = {
  name: 'clearCheck',
  operation: 'ClearPickingGoodsStatus',
  states: [toBeDelivered],
  fields: [],
  idle: (row) => (isChecked(row) ? undefined : words.notChecked),
  call: (FID, _, how) => door.POST('/api/v1/clsSaveData/ClearPickingGoodsStatus', {
    ...how, body: { dctPara: { FID, UserId: user() } },
  }),
  undo: grouped(() => check, () => ({})),
};

const deliver: Step = {
  name: 'deliver',
  operation: 'Delivery',
  states: [toBeDelivered],
  fields: [],
  checksBill: true,
  call: (FID, _, how) => door.POST('/api/v1/clsSaveData/Delivery', { ...how, body: { dctPara: { FID } } }),
  undo: grouped(() => backToDelivery, () => ({})),
};

const backToPicking: Step = {
  name: 'backToPicking',
  operation: 'BackToThePreviousStep',
  states: [toBeDelivered],
  fields: [],
  call: (FID, _, how) => door.POST('/api/v1/clsSaveData/BackToThePreviousStep', {
    ...how, body: { dctPara: { FID, UpdateFlag: false } },
  }),
  undo: grouped(() => pick, (row) => ({ picker: textOf(row, 'FPickMan'), remark: textOf(row, 'FPickRem') })),
};

const backToDelivery: Step = {
  name: 'backToDelivery',
  operation: 'BackToThePreviousStep',
  states: [delivered],
  fields: [],
  call: (FID, _, how) => door.POST('/api/v1/clsSaveData/BackToThePreviousStep', {
    ...how, body: { dctPara: { FID, UpdateFlag: true } },
  }),
};

const upload: Step = {
  name: 'upload',
  operation: 'UploadStatus',
  states: [delivered],
  fields: [{ kind: 'mark', name: 'offline', optional: true }],
  idle: (row) => (isUploaded(row) ? words.alreadyUploaded : undefined),
  call: (FID, { offline }, how) => door.POST('/api/v1/clsSaveData/UploadStatus', {
    ...how, body: { dctPara: { FID, IsOfflineUpLoad: offline ? 1 : 0 } },
  }),
};

const carrier: Step = {
  name: 'carrier',
  operation: 'SetUpLogisticsCompany',
  states: [toBePicked, toBeDelivered],
  fields: [{ kind: 'carrier', name: 'carrier' }],
  note: 'carrierNote',
  call: (FID, values, how) => door.POST('/api/v1/clsSaveData/SetUpLogisticsCompany', {
    ...how, body: { dctPara: { FID, FLogisticsID: Number(values['carrier']) } },
  }),
};

const warehouse: Step = {
  name: 'warehouse',
  operation: 'ChangeStock',
  fields: [{ kind: 'warehouse', name: 'warehouse' }],
  note: 'warehouseNote',
  call: (FID, values, how) => door.POST('/api/v1/clsSaveData/ChangeStock', {
    ...how, body: { dctPara: { FID, FStockID: Number(values['warehouse']) } },
  }),
};

const cost: Step = {
  name: 'cost',
  operation: 'ModifyCost',
  fields: [{ kind: 'amount', name: 'cost' }],
  call: (FID, values, how) => door.POST('/api/v1/clsSaveData/ModifyCost', {
    ...how, body: { dctPara: { FID, LogisticsCosts: Number(values['cost']) } },
  }),
  undo: grouped(() => cost, (row) => ({ cost: String(row['FLogisticsCost'] ?? 0) })),
};

const remarkFields: readonly Field[] = [
  { kind: 'long', name: 'remark' },
  { kind: 'mark', name: 'addBehind', optional: true },
];

const sellerRemark: Step = {
  name: 'sellerRemark',
  operation: 'OrderRemark',
  fields: remarkFields,
  call: (FID, { remark = '', addBehind }, how) => door.POST('/api/v1/clsSaveData/OrderRemark', {
    ...how, body: { dctPara: { FID, FSellerMessage: remark, Mode: addBehind ? 1 : 0 } },
  }),
};

const wishes: Step = {
  name: 'wishes',
  operation: 'DeRemark',
  fields: [{ kind: 'long', name: 'remark' }],
  call: (FID, { remark = '' }, how) => door.POST('/api/v1/clsSaveData/DeRemark', {
    ...how, body: { dctPara: { FID, FDeliveryRemark: remark } },
  }),
};

const deliveryRemark: Step = {
  name: 'deliveryRemark',
  operation: 'DeliveryRemark',
  fields: remarkFields,
  call: (FID, { remark = '', addBehind }, how) => door.POST('/api/v1/clsSaveData/DeliveryRemark', {
    ...how, body: { dctPara: { FID, FShippingRem: remark, Mode: addBehind ? 1 : 0 } },
  }),
};

export const steps: readonly Step[] = [
  pick, check, clearCheck, deliver, backToPicking, backToDelivery, upload,
  carrier, warehouse, cost, sellerRemark, wishes, deliveryRemark,
];
