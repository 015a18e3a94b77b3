// The form of one operation: what it is given, how it is called, and what it answered.
import { useEffect, useMemo, useRef, useState } from 'preact/hooks';
import { newKey } from '../api/door.js';
import { Dialog } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';
import { go, route } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { AnswerView } from './answer.js';
import { makeCall, type Options, type Said } from './call.js';
import { Copies } from './copies.js';
import type { Operation } from './document.js';
import { ArgumentFields } from './fields.js';
import { allFields, bodyOf, exampleOf, valuesFrom, wrongIn, type Values } from './form.js';
import { OptionFields } from './options.js';
import { words } from './words.js';

/** Longer values stay out of the link. */
const longestLink = 4000;

function keepInLink(operation: Operation, values: Values): void {
  const query = new URLSearchParams(Object.entries(values).filter(([, text]) => text));
  if (query.toString().length <= longestLink) go(`console/${operation.path}`, query, true);
}

/** The calls of a form: one at a time, and what the last one answered. */
function useCalls(operation: Operation, values: Values, options: Options) {
  const [said, setSaid] = useState<Said>();
  const [wrong, setWrong] = useState('');
  const [busy, setBusy] = useState(false);
  const [answered, setAnswered] = useState(0);
  const stop = useRef(new AbortController());
  // Another call has another key; the same one keeps it until it is answered.
  const key = useMemo(newKey, [operation, values, options, answered]);
  const kept = operation.writes && !options.dryRun;
  useEffect(() => () => stop.current.abort(), []);
  const run = async () => {
    stop.current = new AbortController();
    const { signal } = stop.current;
    setBusy(true);
    setWrong('');
    try {
      setSaid(await makeCall(operation, bodyOf(operation, values), options, kept ? key : undefined, signal));
      setAnswered((times) => times + 1);
    } catch (error) {
      if (!signal.aborted) setWrong(wordsOf(error));
    } finally {
      setBusy(false);
    }
  };
  return { said, wrong, busy, run, kept, idempotencyKey: kept ? key : undefined, stop: () => stop.current.abort() };
}

export function OperationForm({ operation }: { operation: Operation }) {
  const [values, setValues] = useState<Values>(() => valuesFrom(operation, route.value.query));
  const [options, setOptions] = useState<Options>({
    dryRun: operation.writes, each: false, columns: '', format: 'json',
  });
  const [asking, setAsking] = useState(false);
  const { said, wrong, busy, run, kept, idempotencyKey, stop } = useCalls(operation, values, options);
  const right = allFields(operation).every((field) => !wrongIn(field, values[field.path]));
  const start = () => {
    setAsking(false);
    keepInLink(operation, values);
    void run();
  };
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    if (!right) document.querySelector<HTMLElement>('.operation [aria-invalid="true"]')?.focus();
    else if (kept) setAsking(true);
    else start();
  };
  return (
    <div class="operation stack">
      <About operation={operation} />
      <form class="stack" onSubmit={submit}>
        {operation.arguments.length === 0 ? <p class="quiet">{words.noArguments}</p> : (
          <div class="row">
            <button type="button" onClick={() => setValues(exampleOf(operation))}>{words.example}</button>
            <button type="button" onClick={() => setValues({})}>{words.empty}</button>
          </div>
        )}
        {operation.arguments.map((argument) => (
          <ArgumentFields key={argument.name} argument={argument} values={values} onChange={setValues} />
        ))}
        <OptionFields operation={operation} options={options} onChange={setOptions} idempotencyKey={idempotencyKey} />
        <div class="row">
          <button class="main" disabled={busy}>
            {options.dryRun ? words.tryRun : kept ? words.runForGood : words.run}
          </button>
          <span role="status">{busy && words.running}</span>
          {busy && <button type="button" onClick={stop}>{words.stop}</button>}
        </div>
      </form>
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={() => void run()}>{common.retry}</button>
        </div>
      )}
      {said && !busy && <AnswerView name={operation.name} said={said} />}
      <Copies called={right ? { operation, body: bodyOf(operation, values), options, idempotencyKey } : undefined} />
      {asking && (
        <Dialog title={operation.name} onClose={() => setAsking(false)}>
          <p>{fill(words.runAsk, { name: operation.name })}</p>
          <div class="row end">
            <button type="button" autofocus onClick={() => setAsking(false)}>{common.cancel}</button>
            <button type="button" class="main" onClick={start}>{words.runForGood}</button>
          </div>
        </Dialog>
      )}
    </div>
  );
}

function About({ operation }: { operation: Operation }) {
  return (
    <>
      <h1 tabIndex={-1}>{operation.name}</h1>
      <p class="quiet">
        {operation.className} · {operation.writes ? words.changes : words.reads}
      </p>
      <p lang="en">{operation.help}</p>
      {operation.administrators && <p class="note warn">{words.administrators}</p>}
    </>
  );
}
