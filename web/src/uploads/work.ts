// What can be done with orders whose upload waits or failed.
import { door } from '../api/door.js';
import { ask } from '../api/workbench.js';
import { keysOf, type Call, type Work } from '../orders/work.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

/** Orders are set back, so that the program that uploads takes them again. */
const retry: Call = async (keys, _, { params }) => {
  const key = params.header?.['Idempotency-Key'];
  const rows = await ask('retryUploads', { keys: keysOf(keys) }, undefined, key);
  const back = new Set(rows.map(({ FID }) => FID));
  const orders = keysOf(keys).map((key) => ({ order: String(key), result: back.has(key) }));
  return { data: { orders }, response: new Response() };
};

function markFailed(reason: string): Call {
  return (keys, _, how) => door.POST('/api/v1/clsSaveData/UploadStatusFailure', {
    ...how,
    body: { dctPara: { ErrInfo: keysOf(keys).map((key) => ({ FailureFID: key, FailureInfo: reason })) } },
  });
}

type Names = Work['nameOf'];

export function retryWork(keys: readonly number[], nameOf: Names): Work {
  return {
    title: fill(words.title, { step: words.retry, count: keys.length }), note: words.retryNote, keys, nameOf,
    stages: [{ name: words.retry, call: retry }],
  };
}

export function failedWork(keys: readonly number[], reason: string, nameOf: Names): Work {
  return {
    title: fill(words.title, { step: words.markFailed, count: keys.length }), note: reason, keys, nameOf,
    stages: [{ name: words.markFailed, call: markFailed(reason) }],
  };
}
