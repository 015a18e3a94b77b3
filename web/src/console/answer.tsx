// What a call answered.
import type { Problem } from '../api/door.js';
import { saveTable } from '../parts/csv.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { recordsetOf, type Answer, type Recordset, type Said } from './call.js';
import { words } from './words.js';

const mostShown = 500;

const textOf = (value: unknown) => (
  value === null || value === undefined ? '' : typeof value === 'object' ? JSON.stringify(value) : String(value));

export function AnswerView({ name, said }: { name: string; said: Said }) {
  const { answer, problem, text } = said;
  const gone = answer?.notFound ?? [];
  return (
    <section class="answer stack">
      <h2>{words.answer}</h2>
      <p role="status" class={`note ${problem ? 'bad' : 'good'}`}>
        {fill(words.took, { status: String(said.status), time: said.milliseconds })}{' '}
        <small>{fill(words.request, { request: said.request })}</small>
      </p>
      {said.replayed && <p class="note warn">{words.replayed}</p>}
      {problem && <ProblemView problem={problem} />}
      {gone.length > 0 && <p class="note warn">{fill(words.notFound, { orders: gone.join(', ') })}</p>}
      {answer?.dryRun && <TriedView dryRun={answer.dryRun} />}
      {answer?.orders && <OrdersView orders={answer.orders} />}
      {answer && 'result' in answer && <ResultView name={name} result={answer.result} />}
      {answer?.arguments && <><h3>{words.written}</h3><JsonView value={answer.arguments} /></>}
      {text !== undefined && <pre tabIndex={0} role="region" aria-label={words.answer}>{text}</pre>}
    </section>
  );
}

/** All that is known of what went wrong. */
function ProblemView({ problem }: { problem: Problem }) {
  return (
    <div class="note bad" role="alert">
      <b>{words.problem}: {problem.detail}</b>
      <dl>
        {Object.entries(problem).filter(([name]) => name !== 'detail').map(([name, value]) => (
          <div key={name}><dt>{name}</dt><dd>{textOf(value)}</dd></div>
        ))}
      </dl>
    </div>
  );
}

function TriedView({ dryRun }: { dryRun: NonNullable<Answer['dryRun']> }) {
  const { changes, statements } = dryRun;
  return (
    <>
      <p class="note warn">{changes.length ? words.wasTried : words.noChanges}</p>
      {changes.length > 0 && (
        <table class="narrow">
          <thead><tr><th>{words.table}</th><th class="number">{words.changedRows}</th></tr></thead>
          <tbody>
            {changes.map(({ table, rows }) => <tr key={table}><td>{table}</td><td class="number">{rows}</td></tr>)}
          </tbody>
        </table>
      )}
      <details>
        <summary>{fill(words.statements, { count: statements.length })}</summary>
        {statements.map((statement, index) => (
          <pre key={index} tabIndex={0} role="region" aria-label={`SQL ${index + 1}`}>{statement.trim()}</pre>
        ))}
      </details>
    </>
  );
}

function OrdersView({ orders }: { orders: NonNullable<Answer['orders']> }) {
  return (
    <div class="scrolls" tabIndex={0} role="region" aria-label={words.outcome}>
      <table>
        <thead><tr><th>{words.order}</th><th>{words.outcome}</th></tr></thead>
        <tbody>
          {orders.slice(0, mostShown).map(({ order, result, problem }) => (
            <tr key={order}>
              <td>{order}</td>
              <td class={problem ? 'wrong' : ''}>
                {problem ? [problem.detail, problem.description].filter(Boolean).join(': ') : textOf(result)}
              </td>
            </tr>
          ))}
          {orders.length > mostShown && <tr><td colSpan={2}>…</td></tr>}
        </tbody>
      </table>
    </div>
  );
}

function ResultView({ name, result }: { name: string; result: unknown }) {
  const recordset = recordsetOf(result);
  if (recordset) return <RecordsetView name={name} recordset={recordset} />;
  return result === null ? <p class="quiet">{words.nothingAnswered}</p> : <JsonView value={result} />;
}

function JsonView({ value }: { value: unknown }) {
  return <pre tabIndex={0} role="region" aria-label={words.answer}>{JSON.stringify(value, null, 2)}</pre>;
}

function RecordsetView({ name, recordset: { fields, rows } }: { name: string; recordset: Recordset }) {
  const names = fields.map((field) => field.name);
  const save = () => saveTable(name, names, rows.map((row) => names.map((field) => textOf(row[field]))));
  return (
    <>
      <div class="row">
        <span>{fill(words.rows, { count: rows.length })}</span>
        {rows.length > mostShown && <span class="quiet">{fill(words.firstRows, { count: mostShown })}</span>}
        {rows.length > 0 && <button type="button" onClick={save}>{words.saveCsv}</button>}
      </div>
      {rows.length === 0 ? <p class="quiet">{common.nothing}</p> : (
        <div class="scrolls rows" tabIndex={0} role="region" aria-label={words.answer}>
          <table>
            <thead><tr>{fields.map((field) => <th key={field.name} title={field.type}>{field.name}</th>)}</tr></thead>
            <tbody>
              {rows.slice(0, mostShown).map((row, index) => (
                <tr key={index}>
                  {names.map((field) => (
                    <td key={field} class={typeof row[field] === 'number' ? 'number' : ''}>{textOf(row[field])}</td>
                  ))}
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
    </>
  );
}
