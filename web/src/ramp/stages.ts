// What is done with the parcels: numbers, weights and costs are stored, they are marked as weighed, and delivered.
import { caller, door } from '../api/door.js';
import { keysOf, type Call, type Stage, type Work } from '../orders/work.js';
import { newProgress, tryStep } from '../steps/run.js';
import { steps } from '../steps/steps.js';
import { fill } from '../words/language.js';
import type { Judged, Parcel, StageName } from './lines.js';
import { words } from './words.js';

type Able = Judged & { readonly parcel: Parcel };

const deliver = steps.find(({ name }) => name === 'deliver')!;

/** All three are stored together, so what a line does not say is what the order has. */
function entryOf({ parcel, texts, weight, cost }: Able) {
  return {
    FID: parcel.FID, FLogisticsOrder: texts.waybill || parcel.FLogisticsOrder,
    FWeight: weight ?? Number(parcel.FWeight), FLogisticsCost: cost ?? Number(parcel.FLogisticsCost),
  };
}

function setNumber(lines: ReadonlyMap<number, Able>): Call {
  return (keys, _, how) => door.POST('/api/v1/clsSaveData/SetUpLogisticsNumberAndWeight', {
    ...how, body: { vctPara: keysOf(keys).map((key) => entryOf(lines.get(key)!)) },
  });
}

const markWeighed: Call = (FID, _, how) => door.POST('/api/v1/clsSaveData/UpdateLogisticsWeightStatus', {
  ...how, body: { dctPara: { FID, UserID: caller.value?.erpUser ?? 0, AsyncCreate: false } },
});

export function workOf(able: readonly Able[], names: readonly StageName[]): Work {
  const lines = new Map(able.map((line) => [line.parcel.FID, line]));
  const keys = [...lines.keys()];
  const calls: Record<StageName, Call> = { setNumber: setNumber(lines), markWeighed, deliver: deliver.call };
  const stages = names.map((name): Stage => ({
    name: words[name], call: calls[name], ...(name === 'deliver' ? { states: deliver.states } : {}),
  }));
  return {
    title: fill(words.workTitle, { count: keys.length }), stages, keys,
    nameOf: (key) => lines.get(key)?.parcel.FOrderID ?? String(key),
    ...(names.includes('setNumber') ? { note: words.keptNote } : {}),
    ...(names.includes('deliver') ? {
      attempt: async (stop, onBlock) => {
        const progress = newProgress();
        await tryStep(deliver, {}, keys, progress, stop, () => onBlock(progress.outcomes.size));
        return progress.outcomes;
      },
    } : {}),
  };
}
