// One order: its head, its state, its lines, its history, and the steps it can take.
import { useEffect, useState } from 'preact/hooks';
import { answerOf, door } from '../api/door.js';
import { useChanges } from '../api/events.js';
import { ask, askRows, type HistoryLine } from '../api/workbench.js';
import { lastList, neighbours } from '../orders/list.js';
import { stateOf, textOf, type Row } from '../orders/row.js';
import { useShortcut } from '../parts/keys.js';
import { wordsOf } from '../parts/problem.js';
import { go, linkTo, route } from '../shell/route.js';
import { StepsBar } from '../steps/bar.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { Head } from './head.js';
import { History } from './history.js';
import { Lines, type Line } from './lines.js';
import { Path } from './path.js';
import { words } from './words.js';
import './order.css';

interface Shown {
  readonly order: number;
  /** None when it is not there. */
  readonly row: Row | undefined;
  readonly lines: readonly Line[];
  readonly history: readonly HistoryLine[];
}

async function askOrder(order: number): Promise<Shown> {
  const [rows, lines, history] = await Promise.all([
    askRows([order]),
    answerOf(door.POST('/api/v1/clsGetData/GetEntryData', { body: { dctParameters: { FID: order } } })),
    ask('history', { order }),
  ]);
  return { order, row: rows[0], lines: lines.result?.rows ?? [], history };
}

export function OrderScreen() {
  const order = Number(route.value.path[1]) || 0;
  const [shown, setShown] = useState<Shown>();
  const [wrong, setWrong] = useState('');
  const [times, setTimes] = useState(0);
  const again = () => setTimes((before) => before + 1);
  useEffect(() => {
    let left = false;
    setWrong('');
    if (!Number.isSafeInteger(order) || order < 1) {
      setShown({ order, row: undefined, lines: [], history: [] });
      return undefined;
    }
    askOrder(order).then((found) => left || setShown(found), (error: unknown) => left || setWrong(wordsOf(error)));
    return () => {
      left = true;
    };
  }, [order, times]);
  useChanges((orders) => orders.includes(order) && again());
  const current = shown?.order === order ? shown : undefined;
  return (
    <div class="order">
      <Way order={order} />
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={again}>{common.retry}</button>
        </div>
      )}
      {!current && !wrong && <p class="quiet" role="status">{common.loading}</p>}
      {current && !current.row && <p class="note warn">{words.noOrder}</p>}
      {current?.row && <Body {...current} row={current.row} onChanged={again} />}
    </div>
  );
}

function Body({ order, row, lines, history, onChanged }: Shown & { row: Row; onChanged: () => void }) {
  const state = stateOf(row);
  return (
    <>
      <h1>{fill(words.order, { number: textOf(row, 'FOrderID') })}</h1>
      <Path row={row} />
      <StepsBar key={order} keys={[order]} stateOf={() => state} onChanged={onChanged} />
      <Head row={row} />
      <Lines lines={lines} />
      <History history={history} lines={lines} />
    </>
  );
}

/** The way back to the list, and to the orders beside this one in it. */
function Way({ order }: { order: number }) {
  const { before, behind, place } = neighbours(order);
  useShortcut('j', words.behind, () => behind && go(`order/${behind}`, undefined, true));
  useShortcut('k', words.before, () => before && go(`order/${before}`, undefined, true));
  return (
    <div class="way row">
      <a href={lastList.value.link}>← {words.list}</a>
      {place > 0 && (
        <>
          {before && <a href={linkTo(`order/${before}`)}>‹ {words.before} <kbd>k</kbd></a>}
          <span class="quiet">{fill(words.placeInList, { place, count: lastList.value.keys.length })}</span>
          {behind && <a href={linkTo(`order/${behind}`)}>{words.behind} <kbd>j</kbd> ›</a>}
        </>
      )}
    </div>
  );
}
