// One line of the round at a time, in large type, with buttons for one thumb.
import { useEffect, useState } from 'preact/hooks';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { useScans } from '../scan/scanner.js';
import { tell, told, ToldNote } from '../scan/told.js';
import { WaitingNote } from '../scan/waiting_note.js';
import { common } from '../words/common.js';
import { fill, formatNumber } from '../words/language.js';
import { goTo, names, round, saveBatch, settle, type Line, type Round } from './round.js';
import { words } from './words.js';

function AskShort({ line, onClose }: { line: Line; onClose: () => void }) {
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    const found = Number(new FormData(event.currentTarget as HTMLFormElement).get('found'));
    onClose();
    tell('warn', fill(words.shortBy, { found, wanted: line.wanted }));
    settle({ found });
  };
  return (
    <Dialog title={words.found} onClose={onClose}>
      <form class="stack" onSubmit={submit}>
        <label class="field">
          {fill(words.foundOf, { wanted: line.wanted })}
          <input name="found" type="number" inputMode="decimal" min="0" max={line.wanted} step="any" required autofocus
            value={line.found ?? 0} />
        </label>
        <FormEnd main={common.save} onClose={onClose} />
      </form>
    </Dialog>
  );
}

function AskBatch({ line, onClose }: { line: Line; onClose: () => void }) {
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    const batch = String(new FormData(event.currentTarget as HTMLFormElement).get('batch')).trim();
    onClose();
    saveBatch(batch);
    tell('good', fill(words.batchTaken, { batch, article: line.name }));
  };
  return (
    <Dialog title={words.batchNumber} onClose={onClose}>
      <form class="stack" onSubmit={submit}>
        <label class="field">
          {fill(words.batchOf, { article: line.name })}
          <input name="batch" defaultValue={line.batch} data-scans maxLength={50} autocomplete="off" autofocus />
        </label>
        <FormEnd main={common.save} onClose={onClose} />
      </form>
    </Dialog>
  );
}

function stateOf(line: Line): string {
  if (line.skipped) return words.skipped;
  if (line.found === undefined) return '';
  return line.found < line.wanted ? fill(words.shortBy, { found: line.found, wanted: line.wanted }) : words.picked;
}

function LineCard({ line, orders }: { line: Line; orders: Round['orders'] }) {
  const of = new Set(line.needs.map(({ order }) => order));
  const own = orders.filter(({ order }) => of.has(order));
  const state = stateOf(line);
  return (
    <section class="line" aria-live="polite" aria-label={line.name}>
      <p class="where">
        <span class="quiet">{line.stockName}</span> <b>{line.place || line.placeName || words.noPlace}</b>
      </p>
      <p class="what">{line.name}</p>
      <p class="quiet">{[line.attribute, line.number, line.barCode].filter(Boolean).join(' · ')}</p>
      <p class="much">
        <b>{formatNumber(line.wanted)}</b> {line.unit} {line.gift && <span class="tag">{words.gift}</span>}
      </p>
      <p>
        {own.length === 1 ? `${words.order} ${own[0]!.name}` : fill(words.orders, { orders: own.length })}
        {line.serials && <span class="quiet"> · {words.serials} {line.serials}</span>}
      </p>
      {line.batch && <p>{words.batch} {line.batch}</p>}
      {line.remarks.map((remark) => <p key={remark} class="remark">{remark}</p>)}
      {state && <p><span class="tag">{state}</span></p>}
    </section>
  );
}

type Question = 'short' | 'batch' | undefined;

export function Walk({ now }: { now: Round }) {
  const [question, setQuestion] = useState<Question>();
  const line = now.lines[now.at]!;
  const leave = (go: () => void) => () => {
    told.value = undefined;
    go();
  };
  const take = () => {
    tell('good', fill(words.right, { article: line.name }));
    settle({ found: line.wanted });
  };
  useEffect(() => document.getElementById('work')?.scrollTo(0, 0), [now.at]);
  useScans((code) => {
    if (question) return;
    const current = round.value?.lines[round.value.at];
    const place = line.place || line.stockName || words.noPlace;
    if (current && names(code, current, now.orders)) take();
    else tell('bad', fill(words.wrong, { code, article: line.name, place }));
  });
  return (
    <div class="walk">
      <div class="top">
        <div class="way">
          <label for="way">{fill(words.progress, { at: now.at + 1, all: now.lines.length })}</label>
          <progress id="way" value={now.at} max={now.lines.length} />
        </div>
        <ToldNote />
      </div>
      <LineCard line={line} orders={now.orders} />
      <WaitingNote />
      <div class="thumbs">
        <button type="button" disabled={now.at === 0} onClick={leave(() => goTo(now.at - 1))}>{words.back}</button>
        <button type="button" onClick={() => setQuestion('short')}>{words.short}</button>
        <button type="button" onClick={() => setQuestion('batch')}>{words.batch}</button>
        <button type="button" onClick={leave(() => settle({ skipped: true }))}>{words.skip}</button>
        <button type="button" class="main" onClick={take}>{words.confirm}</button>
      </div>
      {question === 'short' && <AskShort line={line} onClose={() => setQuestion(undefined)} />}
      {question === 'batch' && <AskBatch line={line} onClose={() => setQuestion(undefined)} />}
    </div>
  );
}
