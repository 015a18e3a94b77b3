// Outside warehouses: which orders can be submitted to one, which it refused, and what is queued.
import { useEffect, useState } from 'preact/hooks';
import { columnWords } from '../orders/column_words.js';
import { Groups } from '../orders/groups.js';
import { useNames } from '../orders/names.js';
import { outsideWords, textOf } from '../orders/row.js';
import { saveOrders } from '../orders/save_list.js';
import { ShortList, type ShortColumn } from '../orders/short_list.js';
import type { Work } from '../orders/work.js';
import { WorkDialog } from '../orders/work_dialog.js';
import { LoadNote, useLoaded, type Loaded } from '../parts/loaded.js';
import { sayError } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { askOrders, askWarehouses, groupNames, submitWork, type GroupName, type Warehouse } from './data.js';
import { Purchases } from './purchases.js';
import { askTasks, Tasks } from './tasks.js';
import { words } from './words.js';
import './outside.css';

const columnsOf = (group: GroupName): ShortColumn[] => [
  { caption: columnWords.FWebshopID, textOf: (row) => textOf(row, 'FWebshopName') },
  { caption: columnWords.FTplStatus, textOf: (row) => outsideWords(row['FTplStatus'] || '0') },
  {
    caption: words.reason,
    textOf: (row) => (group === 'returnable' ? words.backReason : textOf(row, 'FTplFail')),
  },
];

export function OutsideScreen() {
  const warehouses = useLoaded('warehouses', askWarehouses);
  const tasks = useLoaded('tasks', askTasks);
  const [place, setPlace] = useState(0);
  const warehouse = warehouses.data?.[place];
  return (
    <div class="outside">
      <h1>{common.outside}</h1>
      <LoadNote of={warehouses} />
      {warehouses.data && !warehouse && <p class="quiet">{words.noWarehouse}</p>}
      {warehouse && (
        <>
          <label class="field">
            {words.warehouse}
            <select value={place} onChange={(event) => setPlace(Number(event.currentTarget.value))}>
              {warehouses.data?.map(({ name, stock }, index) => (
                <option key={index} value={index}>{stock ? name : `${name} (${words.noStock})`}</option>
              ))}
            </select>
          </label>
          <WarehouseOrders key={place} warehouse={warehouse} tasks={tasks} />
        </>
      )}
      <Tasks of={tasks} />
      <Purchases />
    </div>
  );
}

function WarehouseOrders({ warehouse, tasks }: { warehouse: Warehouse; tasks: Loaded<unknown> }) {
  const orders = useLoaded(`${warehouse.type} ${warehouse.id}`, () => askOrders(warehouse));
  const [here, setHere] = useState<GroupName>('able');
  const [selected, setSelected] = useState<ReadonlySet<number>>(new Set());
  const [work, setWork] = useState<Work>();
  const names = useNames();
  useEffect(() => setSelected(new Set()), [here, orders.data]);
  const keys = orders.data?.[here] ?? [];
  const chosen = keys.filter((key) => selected.has(key));
  const step = here === 'able' ? words.submit : words.resubmit;
  const begin = () => {
    names(chosen).then((nameOf) => setWork(submitWork(warehouse, step, chosen, nameOf)), sayError);
  };
  return (
    <section class="stack">
      <LoadNote of={orders} />
      {orders.data && (
        <>
          <div class="row">
            <Groups label={words.groups} here={here} onChoose={setHere} groups={groupNames.map((name) => (
              { name, text: words[name], count: orders.data?.[name].length }
            ))} />
            <button type="button" onClick={orders.again}>{words.refresh}</button>
          </div>
          {here === 'returnable' && <p class="note">{words.backNote}</p>}
          {keys.length === 0 && <p class="quiet">{words.none}</p>}
          {keys.length > 0 && (
            <>
              <div class="row">
                {(here === 'able' || here === 'refused') && (
                  <button type="button" class="main" disabled={!chosen.length} onClick={begin}>
                    {fill(words.counted, { step, count: chosen.length })}
                  </button>
                )}
                <button type="button" onClick={() => {
                  saveOrders(words[here], chosen.length ? chosen : keys, columnsOf(here)).catch(sayError);
                }}>{words.saveList}</button>
              </div>
              <ShortList key={here} label={words[here]} keys={keys} columns={columnsOf(here)} selected={selected}
                onSelect={setSelected} />
            </>
          )}
        </>
      )}
      {work && (
        <WorkDialog work={work} onClose={() => setWork(undefined)}
          onEnded={() => { orders.again(); tasks.again(); }} />
      )}
    </section>
  );
}
