// Calls operations with the types of their description: node client.js URL TOKEN. Prints a line for each thing tried.
import createClient from 'openapi-fetch';
import type { components, paths } from './api.js';

declare const process: { argv: string[] };
const [, , baseUrl, token] = process.argv;
const client = createClient<paths, 'application/json' | 'application/problem+json'>({
  baseUrl, headers: { Authorization: `Bearer ${token}` },
});

type BatchRow = components['schemas']['GetBatchNoRow'];
const read = await client.POST('/api/v1/clsGetData/GetBatchNo', { body: { dctPara: { FID: 3 } } });
const rows: BatchRow[] = read.data?.result?.rows ?? [];
const key: number | null | undefined = rows[0]?.FID;
console.log('read:', rows.length > 0, key);

const query = { 'Filter.FOrderStatus': 2, 'Filter.WebOrderMaxDisplayCount': 1, columns: 'FOrderType' };
const list = await client.GET('/api/v1/clsGetData/GetListData', { params: { query } });
console.log('by query:', JSON.stringify(list.data?.result?.rows));

for (let time = 1; time <= 2; ++time) {
  const write = await client.POST('/api/v1/clsSaveData/ConfirmBill', {
    params: { header: { 'Idempotency-Key': 'pick-42' } },
    body: { dctPara: { FID: '42,47', FPickManNumber: 'E1001', FPickRem: 'fragile' } },
  });
  const result: boolean | undefined = write.data?.result;
  console.log('write:', result, write.response.headers.get('Idempotency-Replayed'));
}

const wrong = await client.POST('/api/v1/clsSaveData/ConfirmBill', { body: { dctPara: { FID: '42;47' } } });
const at: string | undefined = wrong.error?.key;
console.log('error:', wrong.response.status, at, wrong.error?.title);
// @ts-expect-error: the types know the keys
await client.POST('/api/v1/clsSaveData/ConfirmBill', { body: { dctPara: { FIDs: '42' } } });
