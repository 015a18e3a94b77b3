// Purchase orders at outside warehouses. What one keeps of them can be cleared, so that it can be submitted anew.
import { useRef, useState } from 'preact/hooks';
import { answerOf, door, newKey } from '../api/door.js';
import { ask, type Row as Answer } from '../api/workbench.js';
import { outsideWords } from '../orders/row.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { wordsOf } from '../parts/problem.js';
import { say } from '../parts/toasts.js';
import { fill, formatTime } from '../words/language.js';
import { words } from './words.js';

type Purchase = Answer<'purchases'>;

function ClearDialog({ number, onCleared, onClose }: { number: string; onCleared: () => void; onClose: () => void }) {
  const key = useRef(newKey());
  const [wrong, setWrong] = useState('');
  const clear = async () => {
    setWrong('');
    try {
      await answerOf(door.POST('/api/v1/clsSaveData/ClearTplFieldInfo', {
        params: { header: { 'Idempotency-Key': key.current } }, body: { sBillNo: number },
      }));
      say('good', fill(words.cleared, { number }));
      onCleared();
      onClose();
    } catch (error) {
      setWrong(wordsOf(error));
    }
  };
  return (
    <Dialog title={fill(words.clearOf, { number })} onClose={onClose}>
      <form class="stack" onSubmit={(event) => { event.preventDefault(); void clear(); }}>
        <p>{fill(words.clearAsk, { number })}</p>
        {wrong && <div class="note bad" role="alert">{wrong}</div>}
        <FormEnd main={words.clear} onClose={onClose} />
      </form>
    </Dialog>
  );
}

function PurchaseRow({ purchase, onClear }: { purchase: Purchase; onClear: () => void }) {
  return (
    <tr>
      <td>{purchase.FBillNo}</td>
      <td>{formatTime(purchase.FDate, 'date')}</td>
      <td>{outsideWords(purchase.FTplStatus || '0')}</td>
      <td>{purchase.FTplFail}</td>
      <td class="number">{fill(words.linesOf, { done: purchase.FSubmitted, count: purchase.FLines })}</td>
      <td>{purchase.FWarehouse}</td>
      <td>
        <button type="button" aria-label={fill(words.clearOf, { number: purchase.FBillNo })} onClick={onClear}>
          {words.clear}
        </button>
      </td>
    </tr>
  );
}

export function Purchases() {
  const purchases = useLoaded('purchases', () => ask('purchases', {}));
  const [clearing, setClearing] = useState('');
  return (
    <section class="stack">
      <h2>{words.purchases}</h2>
      <LoadNote of={purchases} />
      {purchases.data?.length === 0 && <p class="quiet">{words.noPurchases}</p>}
      {purchases.data && purchases.data.length > 0 && (
        <div class="short-list" tabIndex={0} role="region" aria-label={words.purchases}>
          <table>
            <thead>
              <tr>
                <th>{words.number}</th><th>{words.date}</th><th>{words.state}</th><th>{words.reason}</th>
                <th class="number">{words.lines}</th><th>{words.warehouse}</th>
                <th><span class="hidden">{words.clear}</span></th>
              </tr>
            </thead>
            <tbody>
              {purchases.data.map((purchase) => (
                <PurchaseRow key={purchase.FInterID} purchase={purchase}
                  onClear={() => setClearing(purchase.FBillNo)} />
              ))}
            </tbody>
          </table>
        </div>
      )}
      {clearing && (
        <ClearDialog number={clearing} onCleared={purchases.again} onClose={() => setClearing('')} />
      )}
    </section>
  );
}
