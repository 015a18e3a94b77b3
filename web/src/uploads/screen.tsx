// The upload queue: what waits, what is under way, what failed and why, and what can be done with it.
import { useEffect, useState } from 'preact/hooks';
import { answerOf, door } from '../api/door.js';
import { useChanges } from '../api/events.js';
import { ask, type Row as Answer } from '../api/workbench.js';
import { columnWords } from '../orders/column_words.js';
import { Groups, type Group } from '../orders/groups.js';
import { useNames } from '../orders/names.js';
import { textOf } from '../orders/row.js';
import { saveOrders } from '../orders/save_list.js';
import { ShortList, type ShortColumn } from '../orders/short_list.js';
import type { Work } from '../orders/work.js';
import { WorkDialog } from '../orders/work_dialog.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { sayError } from '../parts/toasts.js';
import { StepDialog } from '../steps/dialog.js';
import { steps } from '../steps/steps.js';
import { common } from '../words/common.js';
import { fill, formatTime } from '../words/language.js';
import { Report } from './report.js';
import { failedWork, retryWork } from './work.js';
import { words } from './words.js';
import './uploads.css';

type Failure = Answer<'failures'>;

/** FUpLoadStatus */
const notUploaded = 0;
const failed = 2;
const underWay = 3;

const markUploaded = steps.find(({ name }) => name === 'upload')!;
const keysIn = (rows: readonly { FID: number }[]) => rows.map(({ FID }) => FID);

async function askQueue() {
  const [waiting, going, failures, { result: running }] = await Promise.all([
    ask('orders', { upload: notUploaded, tab: 'delivered' }), ask('orders', { upload: underWay }), ask('failures', {}),
    answerOf(door.GET('/api/v1/clsGetData/isRunUploadOrder')),
  ]);
  return { waiting: keysIn(waiting), underWay: keysIn(going), failures, running };
}

function nameOf({ FUpload, FReason }: Failure): string {
  return `${FUpload} ${FReason}`;
}

function textOfFailure({ FUpload, FReason }: Failure): string {
  return fill(FUpload === failed ? words.failed : words.tryAgain, { reason: FReason || words.noReason });
}

/** The orders of a group; those of a reason are asked for when it is chosen. */
function useGroup(here: string, queue: Awaited<ReturnType<typeof askQueue>> | undefined) {
  const failure = queue?.failures.find((known) => nameOf(known) === here);
  const ofReason = useLoaded(here, async () => (
    failure ? keysIn(await ask('orders', {
      upload: failure.FUpload, reason: failure.FReason, tab: failure.FUpload === failed ? 'failedUploads' : 'delivered',
    })) : []
  ));
  useEffect(() => ofReason.again(), [queue]);
  const keys = here === 'underWay' ? queue?.underWay : failure ? ofReason.data : queue?.waiting;
  return { keys, ofReason };
}

function FailedDialog({ onReason, onClose }: { onReason: (reason: string) => void; onClose: () => void }) {
  const [reason, setReason] = useState('');
  return (
    <Dialog title={words.markFailed} onClose={onClose}>
      <form class="stack" onSubmit={(event) => { event.preventDefault(); onReason(reason.trim()); }}>
        <label class="field">
          {words.reason}
          <input value={reason} required maxLength={200} pattern=".*\S.*"
            onInput={(event) => setReason(event.currentTarget.value)} />
        </label>
        <FormEnd main={words.markFailed} onClose={onClose} />
      </form>
    </Dialog>
  );
}

const columns = (): ShortColumn[] => [
  { caption: columnWords.FWebshopID, textOf: (row) => textOf(row, 'FWebshopName') },
  { caption: columnWords.FLogisticsOrder, textOf: (row) => textOf(row, 'FLogisticsOrder') },
  { caption: columnWords.FSendDate, textOf: (row) => formatTime(textOf(row, 'FSendDate')) },
  { caption: words.reason, textOf: (row) => textOf(row, 'FReasonsForFailure') },
];

export function UploadsScreen() {
  const queue = useLoaded('queue', askQueue);
  const [here, setHere] = useState('waiting');
  const { keys, ofReason } = useGroup(here, queue.data);
  const [selected, setSelected] = useState<ReadonlySet<number>>(new Set());
  const [open, setOpen] = useState<{ what: 'uploaded' | 'failed' | 'report'; keys: readonly number[] }>();
  const [work, setWork] = useState<Work>();
  const names = useNames();
  useEffect(() => setSelected(new Set()), [here]);
  useChanges(() => queue.again());
  const chosen = keys?.filter((key) => selected.has(key)) ?? [];
  const meant = chosen.length ? chosen : keys ?? [];
  const begin = (some: readonly number[], make: (nameOf: (key: number) => string) => Work) => {
    setOpen(undefined);
    names(some).then((nameOfOrder) => setWork(make(nameOfOrder)), sayError);
  };
  const button = (step: string, keysOfStep: readonly number[], run: () => void) => (
    <button type="button" disabled={!keysOfStep.length} onClick={run}>
      {fill(words.ofSelected, { step, count: keysOfStep.length })}
    </button>
  );
  const groups: Group<string>[] = queue.data ? [
    { name: 'waiting', text: words.waiting, count: queue.data.waiting.length },
    { name: 'underWay', text: words.underWay, count: queue.data.underWay.length },
    ...queue.data.failures.map((failure) => (
      { name: nameOf(failure), text: textOfFailure(failure), count: failure.FOrders }
    )),
  ] : [];
  const said = groups.some(({ name }) => name === here) ? here : 'waiting';
  return (
    <div class="uploads">
      <h1>{common.uploads}</h1>
      <LoadNote of={queue} />
      {queue.data && (
        <>
          <div class="row">
            <span role="status">{queue.data.running ? words.running : words.notRunning}</span>
            <button type="button" onClick={queue.again}>{words.refresh}</button>
          </div>
          <Groups label={words.groups} groups={groups} here={said} onChoose={setHere} />
          {said !== 'waiting' && said !== 'underWay' && <LoadNote of={ofReason} />}
          {keys?.length === 0 && <p class="quiet">{words.none}</p>}
          {keys && keys.length > 0 && (
            <>
              <p class="quiet">{words.hint} {words.showHint}</p>
              <div class="row">
                {said !== 'waiting' && button(words.retry, meant, () => begin(meant, (of) => retryWork(meant, of)))}
                {button(words.markUploaded, chosen, () => setOpen({ what: 'uploaded', keys: chosen }))}
                {button(words.markFailed, chosen, () => setOpen({ what: 'failed', keys: chosen }))}
                <button type="button" disabled={chosen.length !== 1}
                  onClick={() => setOpen({ what: 'report', keys: chosen })}>{words.show}</button>
                <button type="button" onClick={() => {
                  saveOrders(common.uploads, meant, columns()).catch(sayError);
                }}>{words.saveList}</button>
              </div>
              <ShortList key={said} label={common.uploads} keys={keys} columns={columns()} selected={selected}
                onSelect={setSelected} />
            </>
          )}
        </>
      )}
      {open?.what === 'report' && <Report order={open.keys[0]!} onClose={() => setOpen(undefined)} />}
      {open?.what === 'uploaded' && (
        <StepDialog step={markUploaded} keys={open.keys} onChanged={queue.again} onClose={() => setOpen(undefined)} />
      )}
      {open?.what === 'failed' && (
        <FailedDialog onClose={() => setOpen(undefined)}
          onReason={(reason) => begin(open.keys, (of) => failedWork(open.keys, reason, of))} />
      )}
      {work && <WorkDialog work={work} onEnded={queue.again} onClose={() => setWork(undefined)} />}
    </div>
  );
}
