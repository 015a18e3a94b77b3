// The cost invoices, with what their orders cost.
import { useState } from 'preact/hooks';
import { ask } from '../api/workbench.js';
import { formatAmount } from '../orders/row.js';
import '../orders/short_list.css';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { linkTo } from '../shell/route.js';
import { common } from '../words/common.js';
import { formatNumber, formatTime } from '../words/language.js';
import { words } from './words.js';

export function InvoiceList() {
  const [text, setText] = useState('');
  const invoices = useLoaded(text, (stop) => ask('invoices', text ? { text } : {}, stop));
  const found = invoices.data;
  return (
    <>
      <h1>{common.invoices}</h1>
      <form class="row" role="search" onSubmit={(event) => {
        event.preventDefault();
        setText(String(new FormData(event.currentTarget).get('text')).trim());
      }}>
        <label class="field">{words.find}<input name="text" type="search" /></label>
        <button>{common.search}</button>
      </form>
      <LoadNote of={invoices} />
      {found?.length === 0 && <p class="quiet">{words.none}</p>}
      {found && found.length > 0 && (
        <div class="short-list" tabIndex={0} role="region" aria-label={common.invoices}>
          <table>
            <thead>
              <tr>
                <th>{words.number}</th><th>{words.date}</th><th class="number">{words.amount}</th>
                <th class="number">{words.orders}</th><th class="number">{words.costs}</th>
                <th class="number">{words.difference}</th>
              </tr>
            </thead>
            <tbody>
              {found.map((invoice) => (
                <tr key={invoice.FInterID}>
                  <td><a href={linkTo(`invoices/${invoice.FInterID}`)}>{invoice.FBillNo}</a></td>
                  <td>{formatTime(invoice.FDate, 'date')}</td>
                  <td class="number">{formatAmount(invoice.FAmount)}</td>
                  <td class="number">{formatNumber(invoice.FOrders)}</td>
                  <td class="number">{formatAmount(invoice.FCosts)}</td>
                  <td class="number">{formatAmount(Number(invoice.FAmount) - Number(invoice.FCosts))}</td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
    </>
  );
}
