// The figures: how many orders stand where, what was done, and by whom.
import { useEffect, useRef, useState } from 'preact/hooks';
import { useChanges } from '../api/events.js';
import { words as orderWords } from '../orders/words.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { go, linkTo, route } from '../shell/route.js';
import { common } from '../words/common.js';
import { formatNumber } from '../words/language.js';
import {
  askFigures, backlogPlot, carriersPlot, daysText, failuresPlot, measures, personPlot, statesPlot, workPlot,
  type Figures, type Measure,
} from './data.js';
import { Plot } from './plot.js';
import { lengths, rangeOf, today, type Range } from './range.js';
import { words } from './words.js';
import './figures.css';

/** Changes are waited for together, as the numbers are counted anew. */
const pause = 3000;
/** Orders grow older without a change. */
const refreshed = 60_000;

function useFigures(query: URLSearchParams) {
  const figures = useLoaded(query.toString(), (stop) => askFigures(rangeOf(query), stop));
  const timer = useRef(0);
  const again = useRef(figures.again);
  again.current = figures.again;
  useChanges(() => {
    timer.current ||= window.setTimeout(() => {
      timer.current = 0;
      again.current();
    }, pause);
  });
  useEffect(() => {
    const minute = setInterval(() => again.current(), refreshed);
    return () => {
      clearInterval(minute);
      clearTimeout(timer.current);
    };
  }, []);
  return figures;
}

export function FiguresScreen() {
  const { query } = route.value;
  const figures = useFigures(query);
  return (
    <div class="figures">
      <h1 class="hidden">{common.figures}</h1>
      <LoadNote of={figures} />
      {figures.data && <Numbers figures={figures.data} />}
      <RangeFields range={rangeOf(query)} query={query} />
      {figures.data && <Plots figures={figures.data} />}
    </div>
  );
}

function Numbers({ figures: { tabs, deliveredToday } }: { figures: Figures }) {
  const sent = { tab: 'all', sentFrom: today(), sentTo: today() };
  const numbers = [
    { text: orderWords.toBePicked, count: tabs.get('toBePicked') ?? 0, query: { tab: 'toBePicked' }, kind: 'warn' },
    { text: orderWords.toBeDelivered, count: tabs.get('toBeDelivered') ?? 0, query: { tab: 'toBeDelivered' }, kind: '' },
    { text: words.deliveredToday, count: deliveredToday, query: sent, kind: 'good' },
    { text: orderWords.failedUploads, count: tabs.get('failedUploads') ?? 0, query: { tab: 'failedUploads' }, kind: 'bad' },
  ];
  return (
    <section class="numbers" aria-label={words.now}>
      {numbers.map(({ text, count, query, kind }) => (
        <a key={text} class={`card ${kind}`} href={linkTo('orders', query)}>
          <span class="quiet">{text}</span>
          <b>{formatNumber(count)}</b>
        </a>
      ))}
    </section>
  );
}

function RangeFields({ range, query }: { range: Range; query: URLSearchParams }) {
  const names: Record<number, string> = { 1: words.oneDay, 7: words.sevenDays, 30: words.thirtyDays };
  const change = (name: string, value: string) => {
    const wanted = new URLSearchParams(query);
    if (value) wanted.set(name, value);
    else wanted.delete(name);
    go('figures', wanted, true);
  };
  return (
    <div class="row range" role="group" aria-label={words.range}>
      {lengths.map((days) => (
        <button key={days} type="button" aria-pressed={days === range.days} onClick={() => change('days', String(days))}>
          {names[days]}
        </button>
      ))}
      <label class="row">
        {words.lastDay}
        <input type="date" value={range.day} onChange={(event) => change('day', event.currentTarget.value)} />
      </label>
      {range.day !== today() && <button type="button" onClick={() => change('day', '')}>{words.today}</button>}
    </div>
  );
}

function Plots({ figures }: { figures: Figures }) {
  const [measure, setMeasure] = useState<Measure>('share');
  const days = daysText(figures.range);
  const work = figures.range.days > 1 ? words.workByDay : words.workByHour;
  return (
    <div class="plots">
      <Plot title={words.states} data={statesPlot(figures)} />
      <Plot title={words.backlog} data={backlogPlot(figures)} stacked />
      <Plot title={`${work} · ${days}`} data={workPlot(figures)} />
      <Plot title={`${words.workByPerson} · ${days}`} data={personPlot(figures)} lying stacked />
      <Plot title={`${words.carriers} · ${days}`} data={carriersPlot(figures, measure)} lying>
        <select aria-label={words.measure} value={measure}
          onChange={(event) => setMeasure(event.currentTarget.value as Measure)}>
          {measures.map((known) => <option key={known} value={known}>{words[known]}</option>)}
        </select>
      </Plot>
      <Plot title={words.failures} data={failuresPlot(figures)} lying />
    </div>
  );
}
