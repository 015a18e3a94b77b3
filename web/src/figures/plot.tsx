// A plot of bars, each a way to the orders behind it, and the table of the same numbers.
import { BarController, BarElement, CategoryScale, Chart, Legend, LinearScale, Tooltip } from 'chart.js';
import type { ComponentChildren } from 'preact';
import { useEffect, useRef, useState } from 'preact/hooks';
import { theme } from '../shell/theme.js';
import { common } from '../words/common.js';
import { fill, formatNumber } from '../words/language.js';
import type { PlotData } from './data.js';
import { words } from './words.js';

Chart.register(BarController, BarElement, CategoryScale, LinearScale, Tooltip, Legend);

const dark = matchMedia('(prefers-color-scheme: dark)');
const calm = matchMedia('(prefers-reduced-motion: reduce)');
const numberText = (value: number) => formatNumber(Math.round(value * 100) / 100);

interface Props {
  readonly title: string;
  readonly data: PlotData;
  /** Whether the bars lie, for labels that are long. */
  readonly lying?: boolean;
  /** Whether the series stand on each other. */
  readonly stacked?: boolean;
  readonly children?: ComponentChildren;
}

function makeChart(canvas: HTMLCanvasElement, { data, lying, stacked }: Props): Chart {
  const style = getComputedStyle(document.documentElement);
  const color = (name: string) => style.getPropertyValue(`--${name}`).trim();
  const amounts = { beginAtZero: true, stacked: Boolean(stacked), grid: { color: color('line') }, border: { display: false } };
  const names = { stacked: Boolean(stacked), grid: { display: false }, border: { color: color('line') } };
  const ticks = { color: color('quiet') };
  const amountTicks = { ...ticks, precision: 0, callback: (value: string | number) => numberText(Number(value)) };
  return new Chart(canvas, {
    type: 'bar',
    data: {
      labels: [...data.labels],
      datasets: data.series.map((series) => ({
        label: series.label, data: series.bars.map(({ value }) => value), backgroundColor: color(series.color),
        borderRadius: 3, maxBarThickness: 44,
      })),
    },
    options: {
      indexAxis: lying ? 'y' : 'x', maintainAspectRatio: false, ...(calm.matches ? { animation: false } : {}),
      onClick: (_, [hit]) => { if (hit) location.hash = data.series[hit.datasetIndex]!.bars[hit.index]!.link; },
      onHover: (_, hits) => { canvas.style.cursor = hits.length ? 'pointer' : ''; },
      font: { family: style.fontFamily },
      scales: {
        [lying ? 'x' : 'y']: { ...amounts, ticks: amountTicks },
        [lying ? 'y' : 'x']: { ...names, ticks: { ...ticks, autoSkip: !lying } },
      },
      plugins: {
        legend: { display: data.series.length > 1, position: 'bottom', labels: { color: color('ink'), boxWidth: 12 } },
        tooltip: { callbacks: { label: ({ dataset, raw }) => ` ${dataset.label}: ${numberText(Number(raw))}` } },
      },
    },
  });
}

export function Plot(props: Props) {
  const { title, data, lying, stacked, children } = props;
  const empty = data.series.every(({ bars }) => bars.every(({ value }) => value === 0));
  return (
    <section class="card">
      <div class="row"><h2>{title}</h2>{children}</div>
      {empty ? <p class="quiet none">{common.nothing}</p> : (
        <Bars title={title} data={data} {...(lying ? { lying } : {})} {...(stacked ? { stacked } : {})} />
      )}
      <NumberTable title={title} data={data} />
    </section>
  );
}

function Bars(props: Props) {
  const { title, data, lying } = props;
  const canvas = useRef<HTMLCanvasElement>(null);
  const chart = useRef<Chart>();
  const [at, setAt] = useState(-1);
  const [systemDark, setSystemDark] = useState(dark.matches);
  useEffect(() => {
    const changed = () => setSystemDark(dark.matches);
    dark.addEventListener('change', changed);
    return () => dark.removeEventListener('change', changed);
  }, []);
  const drawn = JSON.stringify(data);
  const shownTheme = theme.value;
  useEffect(() => {
    const made = chart.current = makeChart(canvas.current!, props);
    return () => {
      made.destroy();
      chart.current = undefined;
    };
  }, [drawn, shownTheme, systemDark]);

  /** All bars that are not empty, label by label. */
  const bars = data.labels.flatMap((label, index) => data.series.flatMap((series, datasetIndex) => {
    const bar = series.bars[index]!;
    return bar.value ? [{ ...bar, index, datasetIndex, text: `${label}, ${series.label}: ${numberText(bar.value)}` }] : [];
  }));
  const mark = (place: number) => {
    const bar = bars[place];
    setAt(place);
    chart.current?.setActiveElements(bar ? [bar] : []);
    chart.current?.tooltip?.setActiveElements(bar ? [bar] : [], { x: 0, y: 0 });
    chart.current?.update();
  };
  const onKey = (event: KeyboardEvent) => {
    const by = ['ArrowRight', 'ArrowDown'].includes(event.key) ? 1 : ['ArrowLeft', 'ArrowUp'].includes(event.key) ? -1 : 0;
    if (by && bars.length) mark((Math.max(at, by > 0 ? -1 : 0) + by + bars.length) % bars.length);
    else if (event.key === 'Enter' && bars[at]) location.hash = bars[at].link;
    else return;
    event.preventDefault();
  };
  const height = lying ? `${Math.max(9, data.labels.length * 2.1 + 4)}rem` : '16rem';
  return (
    <div class="plot" style={{ height }} tabIndex={0} role="group" aria-label={fill(words.hint, { plot: title })}
      onKeyDown={onKey} onBlur={() => at >= 0 && mark(-1)}>
      <canvas ref={canvas} aria-hidden="true" />
      <span class="hidden" role="status">{bars[at]?.text}</span>
    </div>
  );
}

function NumberTable({ title, data: { head, labels, series } }: { title: string; data: PlotData }) {
  if (labels.length === 0) return null;
  return (
    <details>
      <summary>{words.numbers}</summary>
      <div class="scrolls" tabIndex={0} role="region" aria-label={title}>
        <table>
          <thead><tr><th>{head}</th>{series.map(({ label }) => <th key={label} class="number">{label}</th>)}</tr></thead>
          <tbody>
            {labels.map((label, index) => (
              <tr key={index}>
                <th scope="row">{label}</th>
                {series.map(({ label: name, bars }) => (
                  <td key={name} class="number">
                    <a href={bars[index]!.link} aria-label={`${label}, ${name}: ${numberText(bars[index]!.value)}`}>
                      {numberText(bars[index]!.value)}
                    </a>
                  </td>
                ))}
              </tr>
            ))}
          </tbody>
        </table>
      </div>
    </details>
  );
}
