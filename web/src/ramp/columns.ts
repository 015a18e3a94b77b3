// What the columns of a pasted table are: by their heads, or by what stands in the first line.
export const fields = ['number', 'waybill', 'weight', 'cost'] as const;
export type Field = (typeof fields)[number];
/** Of each column; undefined for one that is not used. */
export type Columns = readonly (Field | undefined)[];

/** Heads as programs and people write them, without blanks, units and marks. */
const heads: Readonly<Record<Field, readonly string[]>> = {
  number: [
    'parcel', 'parcelnumber', 'order', 'ordernumber', 'orderno', 'number', 'uniquecode', 'key', 'forderid',
    'funiquecode', 'fid', '包裹', '包裹号', '包裹编号', '订单', '订单号', '订单编号', '系统订单号', '唯一码', '编号', '订单内码', '内码',
    '包裹號', '包裹編號', '訂單', '訂單號', '訂單編號', '系統訂單號', '唯一碼', '編號', '訂單內碼', '內碼',
  ],
  waybill: [
    'waybill', 'waybillnumber', 'waybillno', 'trackingnumber', 'flogisticsorder', '物流单号', '运单号', '快递单号', '面单号',
    '物流單號', '運單號', '快遞單號', '面單號',
  ],
  weight: ['weight', 'kg', 'fweight', '重量', '称重', '秤重', '千克', '公斤', '包裹重量', '实际重量', '實際重量'],
  cost: [
    'cost', 'logisticscost', 'freight', 'flogisticscost', '成本', '物流成本', '运费', '费用', '快递费', '運費', '費用', '快遞費',
  ],
};

function plain(head: string): string {
  const bare = head.toLowerCase().replace(/[([（【].*$/, '').replace(/[\s_.#:：-]/g, '');
  return bare === 'weightinkg' || bare === 'weightkg' ? 'weight' : bare;
}

function fieldOf(head: string): Field | undefined {
  return fields.find((field) => heads[field].includes(plain(head)));
}

/** Whether the first line has the heads of the columns. */
export function hasHeads(table: readonly (readonly string[])[]): boolean {
  return table[0]?.some((value) => fieldOf(value)) ?? false;
}

/** A table that has a waybill and no other number finds its parcels by it. */
function withNumber(columns: (Field | undefined)[]): Columns {
  const waybill = columns.indexOf('waybill');
  if (!columns.includes('number') && waybill >= 0) columns[waybill] = 'number';
  return columns;
}

const amount = /^\d{1,4}([.,]\d{1,4})?(kg)?$/i;

export function guess(table: readonly (readonly string[])[]): Columns {
  const width = Math.max(0, ...table.map((row) => row.length));
  const found: (Field | undefined)[] = [];
  const take = (field: Field | undefined) => field && !found.includes(field) ? field : undefined;
  for (let at = 0; at < width; ++at) {
    const value = table[0]?.[at] ?? '';
    if (hasHeads(table)) found.push(take(fieldOf(value)));
    else if (at === 0) found.push('number');
    else if (amount.test(value)) found.push(take('weight') ?? take('cost'));
    else found.push(value ? take('waybill') : undefined);
  }
  return withNumber(found);
}
