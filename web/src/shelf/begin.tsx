// The beginning of a round: which orders, how, and who picks.
import { useEffect, useState } from 'preact/hooks';
import { ask, type Choice } from '../api/workbench.js';
import { sayError } from '../parts/toasts.js';
import { groupBy } from '../scan/data.js';
import { useScans } from '../scan/scanner.js';
import { tell, tellError, told, ToldNote } from '../scan/told.js';
import { route } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { beginRound, picker } from './round.js';
import { words } from './words.js';

const mostRows = 500;

interface Lot {
  readonly lot: string;
  readonly keys: readonly number[];
}

async function lotsToPick(): Promise<Lot[]> {
  const keys = (await ask('orders', { tab: 'toBePicked', most: mostRows })).map(({ FID }) => FID);
  const rows = keys.length ? await ask('rows', { keys }) : [];
  const lots = groupBy(rows.filter((row) => row['FLotNumber']), (row) => String(row['FLotNumber']));
  return [...lots]
    .map(([lot, found]) => ({ lot, keys: found.map(({ FID }) => FID) }))
    .sort((a, b) => (a.lot < b.lot ? 1 : -1));
}

/** The orders of a lot that are to be picked, or the one of a number. */
async function ordersOf(text: string): Promise<number[]> {
  const lot = await ask('orders', { tab: 'toBePicked', lot: text });
  if (lot.length) return lot.map(({ FID }) => FID);
  const found = (await ask('find', { text })).filter((order) => order.FOrderStatus === 2);
  return found.length === 1 ? [found[0]!.FID] : [];
}

function Picker() {
  const [employees, setEmployees] = useState<Choice[]>([]);
  useEffect(() => {
    ask('choices', {}).then((choices) => setEmployees(choices.filter(({ FKind }) => FKind === 'employee')), sayError);
  }, []);
  return (
    <label class="field">
      {words.picker}
      <select value={picker.value} required onChange={(event) => { picker.value = event.currentTarget.value; }}>
        <option value="">{words.choosePicker}</option>
        {employees.map(({ FNumber, FName }) => <option key={FNumber} value={FNumber}>{FName} {FNumber}</option>)}
      </select>
    </label>
  );
}

function Lots({ chosen, choose }: { chosen: readonly number[]; choose: (lot: Lot) => void }) {
  const [lots, setLots] = useState<Lot[]>();
  useEffect(() => {
    lotsToPick().then(setLots, sayError);
  }, []);
  return (
    <section class="stack">
      <h2>{words.lots}</h2>
      {!lots && <p class="quiet">{common.loading}</p>}
      {lots?.length === 0 && <p class="quiet">{words.noLots}</p>}
      <div class="row">
        {lots?.map((lot) => (
          <button key={lot.lot} type="button" aria-pressed={lot.keys.every((key) => chosen.includes(key))}
            onClick={() => choose(lot)}>
            {fill(words.lotOf, { lot: lot.lot, orders: lot.keys.length })}
          </button>
        ))}
      </div>
    </section>
  );
}

export function Begin() {
  const linked = route.value.query.get('keys')?.split(',').map(Number).filter(Boolean) ?? [];
  const [orders, setOrders] = useState<readonly number[]>(linked);
  const [collected, setCollected] = useState(false);
  const [text, setText] = useState('');
  const [busy, setBusy] = useState(false);
  const add = (name: string, keys: readonly number[]) => {
    if (!keys.length) return tell('bad', fill(words.nothingIn, { text: name }));
    setOrders((before) => [...new Set([...before, ...keys])]);
    tell('good', fill(words.added, { text: name, orders: keys.length }));
  };
  const look = (code: string) => ordersOf(code).then((keys) => { add(code, keys); setText(''); }).catch(tellError);
  useScans(look);
  const begin = async () => {
    setBusy(true);
    try {
      if (await beginRound(orders, collected)) told.value = undefined;
      else tell('bad', words.noLines);
    } catch (error) {
      tellError(error);
    }
    setBusy(false);
  };
  const kinds = [[false, words.byOrder], [true, words.collected]] as const;
  return (
    <div class="begin">
      <h1>{words.choose}</h1>
      <form class="row" onSubmit={(event) => { event.preventDefault(); if (text.trim()) void look(text.trim()); }}>
        <label class="field">
          {words.lotOrOrder}
          <input data-scans value={text} autocomplete="off" onInput={(event) => setText(event.currentTarget.value)} />
        </label>
        <button>{words.add}</button>
      </form>
      <ToldNote />
      <Lots chosen={orders} choose={({ lot, keys }) => add(lot, keys)} />
      <fieldset class="row">
        <legend>{words.how}</legend>
        {kinds.map(([value, name]) => (
          <label key={name} class="row">
            <input type="radio" name="how" checked={collected === value} onChange={() => setCollected(value)} /> {name}
          </label>
        ))}
      </fieldset>
      <Picker />
      <div class="row">
        <button type="button" class="main big" disabled={busy || !orders.length || !picker.value}
          onClick={() => void begin()}>
          {words.begin}
        </button>
        <span role="status">{fill(words.chosen, { orders: orders.length })}</span>
        {orders.length > 0 && <button type="button" onClick={() => setOrders([])}>{common.none}</button>}
      </div>
    </div>
  );
}
