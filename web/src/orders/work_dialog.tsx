// The dialog of a work: what can be done, how far it is, and what became of each order.
import { useEffect, useRef, useState } from 'preact/hooks';
import { saveTable } from '../parts/csv.js';
import { Dialog } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';
import { OutcomeList } from '../steps/outcomes.js';
import type { Outcomes } from '../steps/run.js';
import '../steps/steps.css';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import type { Row } from './row.js';
import { goOn, outcomeOf, type Runs, type Work } from './work.js';
import { workWords as words } from './work_words.js';

interface Props {
  readonly work: Work;
  /** What became of each order; "" for one that was done. It is told once the dialog is gone. */
  readonly onEnded: (outcomes: Outcomes) => void;
  readonly onClose: () => void;
}

type Phase = 'checking' | 'checked' | 'running' | 'ended';

export function WorkDialog({ work: first, onEnded, onClose }: Props) {
  const [work, setWork] = useState(first);
  return <Body key={work.title} work={work} onEnded={onEnded} onClose={onClose} onUndo={setWork} />;
}

function Body({ work, onEnded, onClose, onUndo }: Props & { onUndo: (work: Work) => void }) {
  const [phase, setPhase] = useState<Phase>(work.attempt ? 'checking' : 'checked');
  const [wrong, setWrong] = useState('');
  const [tried, setTried] = useState(0);
  const [, setBlocks] = useState(0);
  const why = useRef<Outcomes>(new Map());
  const runs = useRef<Runs>([]);
  const stop = useRef(new AbortController());
  const guarded = async (run: (signal: AbortSignal) => Promise<void>) => {
    stop.current = new AbortController();
    const { signal } = stop.current;
    setWrong('');
    try {
      await run(signal);
    } catch (error) {
      if (!signal.aborted) setWrong(wordsOf(error));
    }
  };
  const check = () => guarded(async (signal) => {
    why.current = await work.attempt!(signal, setTried);
    if (!signal.aborted) setPhase('checked');
  });
  const able = work.keys.filter((key) => !why.current.get(key));
  const unable = work.keys.filter((key) => why.current.get(key));
  const start = () => guarded(async (signal) => {
    setPhase('running');
    await goOn(work, able, runs.current, signal, () => setBlocks((count) => count + 1));
    setPhase('ended');
  });
  const told = () => new Map(work.keys.flatMap((key) => {
    const outcome = outcomeOf(work, runs.current, key) ?? why.current.get(key);
    return outcome === undefined ? [] : [[key, outcome] as const];
  }));
  useEffect(() => {
    if (work.attempt) void check();
    return () => {
      stop.current.abort();
      if (runs.current.length) onEnded(told());
    };
  }, []);

  const done = able.filter((key) => outcomeOf(work, runs.current, key) === '');
  const { undo } = work;
  return (
    <Dialog title={work.title} onClose={onClose} wide={phase === 'ended'}>
      {phase === 'checked' && work.note && <p>{work.note}</p>}
      {phase === 'checking' && <Bar text={words.checking} done={tried} count={work.keys.length} />}
      {phase === 'running' && work.stages.map(({ name }, index) => {
        const run = runs.current[index];
        return run && <Bar key={name} text={name} done={run.outcomes.size} count={run.keys.length} />;
      })}
      <div role="status" class="stack">
        {phase === 'checked' && <p>{fill(words.will, { count: able.length })}</p>}
        {phase === 'checked' && unable.length > 0 && <p>{fill(words.cannot, { count: unable.length })}</p>}
        {phase === 'ended' && <Said work={work} runs={runs.current} able={able} />}
      </div>
      {wrong && <div class="note bad" role="alert">{wrong}</div>}
      {phase === 'checked' && unable.length > 0 && (
        <Lines work={work} title={words.reason} lines={unable.map((key) => ({ key, text: why.current.get(key)! }))} />
      )}
      {phase === 'ended' && <Lines work={work} title={words.outcome} lines={linesOf(work, runs.current, able)} />}
      <div class="row end">
        {wrong && (phase === 'checking' || phase === 'running') && (
          <button type="button" onClick={() => void (phase === 'checking' ? check() : start())}>{common.retry}</button>
        )}
        {phase === 'running' && (
          <button type="button" onClick={() => {
            stop.current.abort();
            if (wrong) setPhase('ended');
          }}>{words.stop}</button>
        )}
        {phase === 'ended' && undo && done.length > 0 && (
          <button type="button" onClick={() => onUndo(undo(done))}>{common.undo}</button>
        )}
        {phase !== 'running' && (
          <button type="button" onClick={onClose}>{phase === 'ended' ? common.close : common.cancel}</button>
        )}
        {phase === 'checked' && able.length > 0 && (
          <button type="button" class="main" onClick={() => void start()}>
            {fill(words.start, { name: work.stages.map(({ name }) => name).join(', '), count: able.length })}
          </button>
        )}
      </div>
    </Dialog>
  );
}

/** What was not done comes first. */
function linesOf(work: Work, runs: Runs, able: readonly number[]) {
  return able
    .map((key) => ({ key, outcome: outcomeOf(work, runs, key) }))
    .sort((a, b) => Number(a.outcome === '') - Number(b.outcome === ''))
    .map(({ key, outcome }) => ({ key, text: outcome === undefined ? words.notReached : outcome || words.done }));
}

function Lines({ work, title, lines }: {
  work: Work; title: string; lines: readonly { readonly key: number; readonly text: string }[];
}) {
  const rows = new Map(lines.map(({ key }) => [key, { FID: key, FOrderID: work.nameOf(key) } satisfies Row]));
  const save = () => (
    saveTable(work.title, [words.order, title], lines.map(({ key, text }) => [work.nameOf(key), text]))
  );
  return (
    <>
      <OutcomeList title={title} rows={rows} lines={lines} />
      <div class="row end"><button type="button" onClick={save}>{words.saveList}</button></div>
    </>
  );
}

export function Bar({ text, done, count }: { text: string; done: number; count: number }) {
  return (
    <label class="stack">
      <span>{text} {fill(words.progress, { done, count })}</span>
      <progress value={done} max={count} />
    </label>
  );
}

function Said({ work, runs, able }: { work: Work; runs: Runs; able: readonly number[] }) {
  const done = able.filter((key) => outcomeOf(work, runs, key) === '').length;
  const failed = able.filter((key) => runs.some((run) => run.outcomes.get(key))).length;
  const left = able.length - done - failed;
  return (
    <>
      <p class={failed || left ? '' : 'note good'}>{fill(words.wasDone, { count: done })}</p>
      {failed > 0 && <p class="note bad">{fill(words.wasNot, { count: failed })}</p>}
      {left > 0 && <p class="note warn">{fill(words.left, { count: left })}</p>}
    </>
  );
}
