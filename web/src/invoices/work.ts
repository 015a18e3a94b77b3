// Links orders to a cost invoice and unlinks them; each takes the other back.
import { door } from '../api/door.js';
import { allRows } from '../orders/names.js';
import { attemptOf, together, type Call, type Work } from '../orders/work.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

type Names = Work['nameOf'];
type Keys = readonly number[];

function link(invoice: number): Call {
  return (FID, _, how) => door.POST('/api/v1/clsSaveData/UpdateCostInvoiceStatus', {
    ...how, body: { dctPara: { FID, FCostInvoiceInterID: invoice } },
  });
}

const unlink: Call = (FID, _, how) => (
  door.POST('/api/v1/clsSaveData/UpdateCostInvoiceStatus', { ...how, body: { dctPara: { FID } } })
);

/** The first block unlinks all; the others find nothing left. */
function unlinkAll(invoice: number): Call {
  return (keys, _, { params: { header } }) => together(keys, door.POST('/api/v1/clsSaveData/UpdateAfterDeleteBill', {
    params: header ? { header } : {}, body: { sFID: invoice },
  }));
}

const titleOf = (step: string, keys: Keys) => fill(words.title, { step, count: keys.length });

export function linkWork(invoice: number, keys: Keys, covered: Keys, nameOf: Names): Work {
  const here = new Set(covered);
  return {
    title: titleOf(words.link, keys), keys, nameOf,
    stages: [{ name: words.link, call: link(invoice) }],
    attempt: async (stop, onBlock) => {
      const why = new Map<number, string>();
      for (const row of await allRows(keys)) {
        if (here.has(row.FID)) why.set(row.FID, words.linkedHere);
        else if (row['FCostInvoice'] === 'Y') why.set(row.FID, words.linkedElsewhere);
      }
      const free = keys.filter((key) => !why.has(key));
      const tried = await attemptOf(link(invoice), free)(stop, (done) => onBlock(done + why.size));
      return new Map([...why, ...tried]);
    },
    undo: (done) => unlinkWork(invoice, done, nameOf),
  };
}

export function unlinkWork(invoice: number, keys: Keys, nameOf: Names): Work {
  return {
    title: titleOf(words.unlink, keys), keys, nameOf,
    stages: [{ name: words.unlink, call: unlink }],
    undo: (done) => linkWork(invoice, done, [], nameOf),
  };
}

export function unlinkAllWork(invoice: number, keys: Keys, nameOf: Names): Work {
  return {
    ...unlinkWork(invoice, keys, nameOf),
    title: titleOf(words.unlinkAll, keys),
    stages: [{ name: words.unlinkAll, call: unlinkAll(invoice) }],
  };
}
