// Prints of orders, shown as they will be on paper: #/print/pick?keys=1,2,3 or ?lot=20261112.
import type { ComponentType } from 'preact';
import { useEffect, useState } from 'preact/hooks';
import { newKey } from '../api/door.js';
import { Dialog } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';
import { say, sayError } from '../parts/toasts.js';
import { linkTo, route } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { PrintButton } from './counted.js';
import { giveNumbers, keysOf, kinds, materialOf, type Kind, type Material } from './data.js';
import { DeliveryLists, DeliveryNotes } from './delivery.js';
import { Labels } from './label.js';
import { CollectedList, PickLists } from './pick_list.js';
import './prints.css';
import { words } from './words.js';

const bodies: Record<Kind, ComponentType<{ material: Material }>> = {
  pick: PickLists, collected: CollectedList, note: DeliveryNotes, list: DeliveryLists, label: Labels,
};

const noKeys: readonly number[] = [];

function useMaterial(kind: Kind, query: string) {
  const [turn, setTurn] = useState(0);
  const asked = `${kind} ${turn} ${query}`;
  const [found, setFound] = useState<{ asked: string; material?: Material; wrong?: string }>();
  useEffect(() => {
    let stale = false;
    keysOf(new URLSearchParams(query))
      .then((keys) => materialOf(keys, kind))
      .then((material) => !stale && setFound({ asked, material }))
      .catch((error: unknown) => !stale && setFound({ asked, wrong: wordsOf(error) }));
    return () => {
      stale = true;
    };
  }, [asked]);
  const answer = found?.asked === asked ? found : undefined;
  return { material: answer?.material, wrong: answer?.wrong, again: () => setTurn(turn + 1) };
}

/** The button that gives the orders a lot; a second press after an error is the same write. */
function GiveNumbers({ material, onDone }: { material: Material; onDone: () => void }) {
  const [asking, setAsking] = useState(false);
  const [key, setKey] = useState(newKey);
  const give = async () => {
    setAsking(false);
    try {
      say('good', fill(words.numbered, { lot: await giveNumbers(material.keys, key) }));
      setKey(newKey());
      onDone();
    } catch (error) {
      sayError(error);
    }
  };
  const numbered = material.rows.some((row) => row['FLotNumber']);
  return (
    <>
      <button type="button" onClick={() => (numbered ? setAsking(true) : void give())}>{words.number}</button>
      {asking && (
        <Dialog title={words.number} onClose={() => setAsking(false)}>
          <p>{words.numberAsk}</p>
          <div class="row end">
            <button type="button" onClick={() => setAsking(false)}>{common.cancel}</button>
            <button type="button" class="main" onClick={() => void give()}>{words.number}</button>
          </div>
        </Dialog>
      )}
    </>
  );
}

export function PrintScreen() {
  const { path, query } = route.value;
  const kind = kinds.find((known) => known === path[1]) ?? 'pick';
  const { material, wrong, again } = useMaterial(kind, query.toString());
  const Body = bodies[kind];
  const empty = material !== undefined && material.keys.length === 0;
  return (
    <div class="prints">
      <div class="tools">
        <h1>{words[kind]}</h1>
        <nav class="row" aria-label={words.kinds}>
          {kinds.map((known) => (
            <a key={known} href={linkTo(`print/${known}`, query)} aria-current={known === kind ? 'page' : undefined}>
              {words[known]}
            </a>
          ))}
        </nav>
        <div class="row">
          <PrintButton kind={kind} keys={material?.keys ?? noKeys} onCounted={again} />
          {material && !empty && ['pick', 'collected'].includes(kind) && (
            <GiveNumbers key={query.toString()} material={material} onDone={again} />
          )}
        </div>
        <div role="status" aria-live="polite" class="stack">
          {!material && !wrong && <p class="quiet">{common.loading}</p>}
          {material && material.leftOut.length > 0 && (
            <p class="note warn">{fill(words.leftOut, { orders: material.leftOut.join(', ') })}</p>
          )}
          {material && material.missing.length > 0 && (
            <p class="note warn">{fill(words.missing, { orders: material.missing.join(', ') })}</p>
          )}
          {material && material.nothingToPick.length > 0 && (
            <p class="note warn">{fill(words.nothingToPick, { orders: material.nothingToPick.join(', ') })}</p>
          )}
          {empty && <p class="note">{material.leftOut.length || material.missing.length ? words.empty : words.none}</p>}
        </div>
        {wrong && (
          <p class="note bad row" role="alert">
            {wrong} <button type="button" onClick={again}>{common.retry}</button>
          </p>
        )}
      </div>
      {material && !empty && (
        <div class="paper" tabIndex={0} role="region" aria-label={words[kind]}><Body material={material} /></div>
      )}
    </div>
  );
}
