// Cost invoices: their list, or one with the orders that it covers.
import { useEffect, useState } from 'preact/hooks';
import { ask, type Row as Answer } from '../api/workbench.js';
import { columnWords } from '../orders/column_words.js';
import { useNames } from '../orders/names.js';
import { formatAmount, textOf } from '../orders/row.js';
import { saveOrders } from '../orders/save_list.js';
import { ShortList, type ShortColumn } from '../orders/short_list.js';
import type { Work } from '../orders/work.js';
import { WorkDialog } from '../orders/work_dialog.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { sayError } from '../parts/toasts.js';
import { linkTo, route } from '../shell/route.js';
import { fill, formatTime } from '../words/language.js';
import { Linking } from './linking.js';
import { InvoiceList } from './list.js';
import { linkWork, unlinkAllWork, unlinkWork } from './work.js';
import { words } from './words.js';
import './invoices.css';

type Invoice = Answer<'invoices'>;

/** Less than this is what rounding leaves. */
const cent = 0.005;

async function askInvoice(key: number): Promise<{ invoice: Invoice | undefined; keys: number[] }> {
  const [invoices, orders] = await Promise.all([ask('invoices', {}), ask('orders', { invoice: key })]);
  return { invoice: invoices.find(({ FInterID }) => FInterID === key), keys: orders.map(({ FID }) => FID) };
}

export function InvoicesScreen() {
  const key = Number(route.value.path[1]) || 0;
  return <div class="invoices">{key ? <OneInvoice key={key} invoiceKey={key} /> : <InvoiceList />}</div>;
}

const columns = (): ShortColumn[] => [
  { caption: columnWords.FLogisticsID, textOf: (row) => textOf(row, 'FLogisticsIDName') },
  { caption: columnWords.FLogisticsOrder, textOf: (row) => textOf(row, 'FLogisticsOrder') },
  { caption: columnWords.FSendDate, textOf: (row) => formatTime(textOf(row, 'FSendDate'), 'date') },
  { caption: columnWords.FLogisticsCost, textOf: (row) => formatAmount(row['FLogisticsCost']), numeric: true },
];

function Sums({ invoice }: { invoice: Invoice }) {
  const difference = Number(invoice.FAmount) - Number(invoice.FCosts);
  const differs = Math.abs(difference) >= cent;
  const facts = [
    [words.date, formatTime(invoice.FDate, 'date')], [words.amount, formatAmount(invoice.FAmount)],
    [words.costs, formatAmount(invoice.FCosts)], [words.difference, formatAmount(difference)],
  ];
  return (
    <>
      <dl>{facts.map(([name, value]) => <div key={name}><dt>{name}</dt><dd>{value}</dd></div>)}</dl>
      <p class={`note ${differs ? 'warn' : 'good'}`}>
        {differs ? fill(words.differs, { amount: formatAmount(Math.abs(difference)) }) : words.matches}
      </p>
    </>
  );
}

function OneInvoice({ invoiceKey }: { invoiceKey: number }) {
  const found = useLoaded(String(invoiceKey), () => askInvoice(invoiceKey));
  const [selected, setSelected] = useState<ReadonlySet<number>>(new Set());
  const [work, setWork] = useState<Work>();
  const names = useNames();
  const { invoice, keys = [] } = found.data ?? {};
  useEffect(() => setSelected(new Set()), [found.data]);
  const chosen = keys.filter((key) => selected.has(key));
  const begin = (some: readonly number[], make: typeof unlinkWork) => {
    names(some).then((nameOf) => setWork(make(invoiceKey, some, nameOf)), sayError);
  };
  return (
    <>
      <a href={linkTo('invoices')}>← {words.back}</a>
      <LoadNote of={found} />
      {found.data && !invoice && <p class="note warn">{words.none}</p>}
      {invoice && (
        <>
          <h1>{fill(words.invoice, { number: invoice.FBillNo })}</h1>
          <Sums invoice={invoice} />
          <section class="stack">
            <h2>{words.ofInvoice}</h2>
            {keys.length === 0 && <p class="quiet">{words.noOrders}</p>}
            {keys.length > 0 && (
              <>
                <div class="row">
                  <button type="button" disabled={!chosen.length} onClick={() => begin(chosen, unlinkWork)}>
                    {fill(words.counted, { step: words.unlink, count: chosen.length })}
                  </button>
                  <button type="button" onClick={() => begin(keys, unlinkAllWork)}>
                    {fill(words.counted, { step: words.unlinkAll, count: keys.length })}
                  </button>
                  <button type="button" onClick={() => {
                    saveOrders(invoice.FBillNo, keys, columns()).catch(sayError);
                  }}>{words.saveList}</button>
                </div>
                <ShortList label={words.ofInvoice} keys={keys} columns={columns()} selected={selected}
                  onSelect={setSelected} />
              </>
            )}
          </section>
          <Linking onFound={(numbers) => (
            setWork(linkWork(invoiceKey, [...numbers.keys()], keys, (key) => numbers.get(key) ?? String(key)))
          )} />
        </>
      )}
      {work && <WorkDialog work={work} onEnded={found.again} onClose={() => setWork(undefined)} />}
    </>
  );
}
