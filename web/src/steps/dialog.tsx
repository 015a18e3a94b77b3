// The dialog of a step: what it asks for, which orders can take it, how far it is, and what became of each order.
import { useEffect, useRef, useState } from 'preact/hooks';
import { may } from '../api/door.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';
import { say, sayError } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { StepField } from './fields.js';
import { OutcomeList } from './outcomes.js';
import { newProgress, Run, takeBack, tryStep, type Progress } from './run.js';
import type { Step, Undo, Values } from './steps.js';
import { words } from './words.js';

interface Props {
  readonly step: Step;
  readonly keys: readonly number[];
  readonly onChanged: (keys: readonly number[]) => void;
  readonly onClose: () => void;
}

type Phase = 'asking' | 'checking' | 'checked' | 'running' | 'ended' | 'undoing';

async function undoAll(
  undos: readonly Undo[], onChanged: Props['onChanged'], onBlock: (done: number) => void,
): Promise<void> {
  const outcomes = [...await takeBack(undos, onBlock)];
  const wrong = outcomes.filter(([, why]) => why);
  if (wrong.length) say('bad', fill(words.notUndone, { count: wrong.length, why: wrong[0]![1] }));
  else say('good', fill(words.undone, { count: outcomes.length }));
  onChanged(outcomes.map(([key]) => key));
}

export function StepDialog({ step, keys, onChanged, onClose }: Props) {
  const [phase, setPhase] = useState<Phase>(step.fields.length ? 'asking' : 'checking');
  const [values, setValues] = useState<Values>({});
  const [, setBlocks] = useState(0);
  const [undone, setUndone] = useState(0);
  const [wrong, setWrong] = useState('');
  const progress = useRef<Progress>(newProgress());
  const run = useRef<Run>();
  const stop = useRef(new AbortController());
  const closed = useRef(false);
  const drawn = () => setBlocks((count) => count + 1);

  const guarded = async (work: () => Promise<void>) => {
    stop.current = new AbortController();
    setWrong('');
    try {
      await work();
    } catch (error) {
      if (!stop.current.signal.aborted) setWrong(wordsOf(error));
    }
  };
  const check = () => guarded(async () => {
    setPhase('checking');
    await tryStep(step, values, keys, progress.current, stop.current.signal, drawn);
    setPhase(stop.current.signal.aborted ? 'asking' : 'checked');
  });
  const start = (fresh: boolean) => guarded(async () => {
    if (fresh) run.current = new Run(step, values, keys.filter((key) => progress.current.outcomes.get(key) === ''));
    const going = run.current!;
    setPhase('running');
    try {
      await going.go(stop.current.signal, drawn);
      setPhase('ended');
    } finally {
      if (closed.current) tell();
    }
  });
  /** What was done is told once the dialog is gone, as orders may leave the list by it. */
  const tell = () => {
    const done = run.current?.done ?? [];
    if (done.length) onChanged(done);
  };
  useEffect(() => {
    if (!step.fields.length) void check();
    return () => {
      closed.current = true;
      stop.current.abort();
      tell();
    };
  }, []);

  const { rows, outcomes } = progress.current;
  const going = run.current;
  const able = keys.filter((key) => outcomes.get(key) === '');
  const unable = keys.filter((key) => outcomes.get(key));
  const undos = phase === 'ended' ? step.undo?.(going?.done.flatMap((key) => rows.get(key) ?? []) ?? []) ?? [] : [];
  const undo = () => {
    setPhase('undoing');
    undoAll(undos, onChanged, setUndone).catch(sayError).finally(onClose);
  };
  return (
    <Dialog title={fill(words.title, { step: words[step.name], count: keys.length })} onClose={onClose}
      wide={phase === 'ended'}>
      {phase === 'asking' && (
        <form class="stack" onSubmit={(event) => {
          event.preventDefault();
          progress.current = newProgress();
          void check();
        }}>
          {step.fields.map((field) => (
            <StepField key={field.name} field={field} values={values} onChange={setValues} />
          ))}
          {step.note && <p class="quiet">{words[step.note]}</p>}
          <FormEnd main={words.checkFirst} onClose={onClose} />
        </form>
      )}
      {phase === 'checking' && <Bar text={words.checking} done={outcomes.size} count={keys.length} />}
      {phase === 'running' && going && (
        <Bar text={words.running} done={going.outcomes.size} count={going.keys.length} />
      )}
      {phase === 'undoing' && going && <Bar text={words.undoing} done={undone} count={going.done.length} />}
      <div role="status" class="stack">
        {phase === 'checked' && <p>{fill(words.will, { count: able.length })}</p>}
        {phase === 'checked' && unable.length > 0 && <p>{fill(words.cannot, { count: unable.length })}</p>}
        {phase === 'ended' && going && <Said run={going} />}
      </div>
      {wrong && <div class="note bad" role="alert">{wrong}</div>}
      {phase === 'checked' && unable.length > 0 && (
        <OutcomeList title={words.reason} rows={rows}
          lines={unable.map((key) => ({ key, text: outcomes.get(key)! }))} />
      )}
      {phase === 'ended' && going && (
        <OutcomeList title={words.outcome} rows={rows} lines={linesOf(going)} />
      )}
      {phase !== 'asking' && (
        <div class="row end">
          {wrong && (phase === 'checking' || phase === 'running') && (
            <button type="button" onClick={() => void (phase === 'checking' ? check() : start(false))}>
              {common.retry}
            </button>
          )}
          {phase === 'running' && (
            <button type="button" onClick={() => {
              stop.current.abort();
              if (wrong) setPhase('ended');
            }}>{words.stop}</button>
          )}
          {phase === 'checked' && step.fields.length > 0 && (
            <button type="button" onClick={() => setPhase('asking')}>{words.back}</button>
          )}
          {undos.length > 0 && undos.every(({ step: { operation } }) => may(operation)) && (
            <button type="button" onClick={undo}>{common.undo}</button>
          )}
          {phase !== 'running' && phase !== 'undoing' && (
            <button type="button" onClick={onClose}>{phase === 'ended' ? common.close : common.cancel}</button>
          )}
          {phase === 'checked' && able.length > 0 && (
            <button type="button" class="main" onClick={() => void start(true)}>
              {fill(words.run, { step: words[step.name], count: able.length })}
            </button>
          )}
        </div>
      )}
    </Dialog>
  );
}

/** What was not done comes first. */
function linesOf({ keys, outcomes }: Run) {
  const ranked = [...keys].sort((a, b) => Number(outcomes.get(a) === '') - Number(outcomes.get(b) === ''));
  return ranked.map((key) => {
    const why = outcomes.get(key);
    return { key, text: why === undefined ? words.notReached : why || words.done };
  });
}

function Bar({ text, done, count }: { text: string; done: number; count: number }) {
  return (
    <label class="stack">
      <span>{text} {fill(words.progress, { done, count })}</span>
      <progress value={done} max={count} />
    </label>
  );
}

function Said({ run }: { run: Run }) {
  const failed = [...run.outcomes.values()].filter(Boolean).length;
  const left = run.keys.length - run.outcomes.size;
  return (
    <>
      <p class={failed || left ? '' : 'note good'}>{fill(words.wasDone, { count: run.done.length })}</p>
      {failed > 0 && <p class="note bad">{fill(words.wasNot, { count: failed })}</p>}
      {left > 0 && <p class="note warn">{fill(words.stopped, { count: left })}</p>}
    </>
  );
}
