// The numbers of the figures, and the plots that are made of them.
import { ask, type Row } from '../api/workbench.js';
import { toBePicked } from '../orders/row.js';
import { words as orderWords } from '../orders/words.js';
import { linkTo } from '../shell/route.js';
import { dateForm, formatNumber, formatTime } from '../words/language.js';
import { before, timeText, today, type Range } from './range.js';
import { words } from './words.js';

export interface Bar {
  readonly value: number;
  /** The list of the orders that it counts. */
  readonly link: string;
}

export interface Series {
  readonly label: string;
  readonly color: 'accent' | 'good' | 'warn' | 'bad' | 'quiet';
  readonly bars: readonly Bar[];
}

export interface PlotData {
  /** What the labels are. */
  readonly head: string;
  readonly labels: readonly string[];
  readonly series: readonly Series[];
}

export interface Figures {
  readonly range: Range;
  readonly tabs: ReadonlyMap<string, number>;
  readonly deliveredToday: number;
  readonly backlog: readonly Row<'backlog'>[];
  readonly work: readonly Row<'work'>[];
  readonly carriers: readonly Row<'carriers'>[];
  readonly failures: readonly Row<'failures'>[];
}

export async function askFigures(range: Range, signal: AbortSignal): Promise<Figures> {
  const { day, days } = range;
  const now = today();
  const [tabs, backlog, work, carriers, failures, ofToday] = await Promise.all([
    ask('tabs', {}, signal), ask('backlog', {}, signal), ask('work', { day, days }, signal),
    ask('carriers', { day, days }, signal), ask('failures', {}, signal), ask('work', { day: now, days: 1 }, signal),
  ]);
  return {
    range, backlog, work, carriers, failures, tabs: new Map(tabs.map(({ FTab, FOrders }) => [FTab, FOrders])),
    deliveredToday: sum(ofToday.filter(({ FStep }) => FStep === 'delivered')),
  };
}

const sum = (rows: readonly { readonly FOrders: number }[]) => rows.reduce((total, { FOrders }) => total + FOrders, 0);
const ordersLink = (query: Record<string, string>) => linkTo('orders', query);

export function statesPlot({ tabs }: Figures): PlotData {
  const names = ['toBePicked', 'toBeDelivered', 'delivered', 'failedUploads', 'refunds', 'locked'] as const;
  const bars = names.map((tab) => ({ value: tabs.get(tab) ?? 0, link: ordersLink({ tab }) }));
  return {
    head: words.state, labels: names.map((name) => orderWords[name]),
    series: [{ label: words.orders, color: 'accent', bars }],
  };
}

export function backlogPlot({ backlog }: Figures): PlotData {
  const ages = [words.age0, words.age1, words.age2, words.age3, words.age4, words.age5];
  const states = [...new Set(backlog.map(({ FState }) => FState))];
  const barOf = (state: number, age: number): Bar => {
    const row = backlog.find(({ FState, FAge }) => FState === state && FAge === age);
    const query = {
      tab: state === toBePicked ? 'toBePicked' : 'toBeDelivered', ...(row?.FFrom ? { paidFrom: row.FFrom } : {}),
      ...(row?.FTo ? { paidTo: before(row.FTo) } : {}),
    };
    return { value: row?.FOrders ?? 0, link: ordersLink(query) };
  };
  return {
    head: words.age, labels: ages,
    series: states.map((state) => ({
      label: state === toBePicked ? orderWords.toBePicked : orderWords.toBeDelivered,
      color: state === toBePicked ? 'warn' : 'accent', bars: ages.map((_, age) => barOf(state, age)),
    })),
  };
}

/** The steps, and how the list of orders names when and by whom each was taken. */
const steps = [
  { step: 'picked', key: 'picked', color: 'warn' }, { step: 'checked', key: 'checked', color: 'quiet' },
  { step: 'weighed', key: 'weighed', color: 'accent' }, { step: 'delivered', key: 'sent', color: 'good' },
] as const;

function bucketLabel(from: string, days: number): string {
  if (days > 1) return dateForm({ day: 'numeric', month: 'numeric' }).format(new Date(from));
  return from.slice(11, 13);
}

/** Every hour or day from the first with work to the last, those without any too. */
function bucketsOf({ work, range }: Figures): { from: string; to: string }[] {
  const ends = new Map(work.flatMap(({ FFrom, FTo }) => (FFrom && FTo ? [[FFrom, FTo] as const] : [])));
  const known = [...ends.keys()].sort();
  const buckets: { from: string; to: string }[] = [];
  const last = known[known.length - 1];
  for (let time = known[0] ? new Date(known[0]) : undefined; time && last && time <= new Date(last);) {
    const next = new Date(time);
    if (range.days > 1) next.setDate(next.getDate() + 1);
    else next.setHours(next.getHours() + 1);
    buckets.push({ from: timeText(time), to: timeText(next) });
    time = next;
  }
  return buckets;
}

export function workPlot(figures: Figures): PlotData {
  const { work, range } = figures;
  const buckets = bucketsOf(figures);
  return {
    head: words.time, labels: buckets.map(({ from }) => bucketLabel(from, range.days)),
    series: steps.map(({ step, key, color }) => ({
      label: words[step], color,
      bars: buckets.map(({ from, to }) => ({
        value: sum(work.filter(({ FStep, FFrom }) => FStep === step && FFrom?.slice(0, 19) === from)),
        link: ordersLink({ tab: 'all', [`${key}From`]: from, [`${key}To`]: before(to) }),
      })),
    })),
  };
}

export function personPlot({ work, range }: Figures): PlotData {
  const total = (rows: readonly Row<'work'>[], name: string) => sum(rows.filter((row) => row.FPersonName === name));
  const names = [...new Set(work.map(({ FPersonName }) => FPersonName))].sort((a, b) => total(work, b) - total(work, a));
  const barOf = (step: string, key: string, name: string): Bar => {
    // Who picks is an employee, who takes another step a user: the same name has two keys.
    const rows = work.filter(({ FStep, FPersonName }) => FStep === step && FPersonName === name);
    const by = rows[0]?.FPersonID ?? '';
    const query = { tab: 'all', [`${key}From`]: range.from, [`${key}To`]: range.to, ...(by ? { [`${key}By`]: by } : {}) };
    return { value: sum(rows), link: ordersLink(query) };
  };
  return {
    head: words.person, labels: names.map((name) => name || words.nobody),
    series: steps.map(({ step, key, color }) => ({
      label: words[step], color, bars: names.map((name) => barOf(step, key, name)),
    })),
  };
}

export const measures = ['share', 'weight', 'cost'] as const;
export type Measure = (typeof measures)[number];

export function carriersPlot({ carriers, range }: Figures, measure: Measure): PlotData {
  const all = sum(carriers);
  const barOf = (row: Row<'carriers'>): Bar => ({
    value: measure === 'share' ? row.FOrders : Number(measure === 'weight' ? row.FWeight : row.FCost),
    link: ordersLink({ tab: 'all', carrier: String(row.FCarrierID), sentFrom: range.from, sentTo: range.to }),
  });
  const labelOf = ({ FCarrier, FOrders }: Row<'carriers'>) => (
    `${FCarrier || words.noCarrier} · ${formatNumber(all ? (FOrders / all) * 100 : 0, 0)} %`);
  return {
    head: words.carrier, labels: carriers.map(labelOf),
    series: [{
      label: measure === 'share' ? words.orders : words[measure], color: 'accent', bars: carriers.map(barOf),
    }],
  };
}

export function failuresPlot({ failures }: Figures): PlotData {
  const reasons = [...new Set(failures.map(({ FReason }) => FReason))];
  const bars = reasons.map((reason) => ({
    value: sum(failures.filter(({ FReason }) => FReason === reason)), link: reason ? ordersLink({ tab: 'all', reason }) : ordersLink({ tab: 'failedUploads' }),
  }));
  return {
    head: words.reason, labels: reasons.map((reason) => reason || words.noReason),
    series: [{ label: words.orders, color: 'bad', bars }],
  };
}

export const daysText = ({ from, day, days }: Range) => (
  days === 1 ? formatTime(day + 'T00:00:00', 'date') : `${formatTime(from, 'date')} – ${formatTime(day + 'T00:00:00', 'date')}`);
