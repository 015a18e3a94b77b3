// The ramp: many parcels are numbered, weighed and delivered at once, from a table or by scans.
import { signal } from '@preact/signals';
import { useMemo, useState } from 'preact/hooks';
import { may } from '../api/door.js';
import { Bar, WorkDialog } from '../orders/work_dialog.js';
import type { Work } from '../orders/work.js';
import { readTable, saveTable } from '../parts/csv.js';
import { Pasted, withLine } from '../parts/pasted.js';
import { useScans } from '../scan/scanner.js';
import type { Outcomes } from '../steps/run.js';
import { common } from '../words/common.js';
import { fill, language } from '../words/language.js';
import { guess, type Columns } from './columns.js';
import { canBeDone, judgeAll, linesOf, operations, stageNames, type Judged, type StageName } from './lines.js';
import { useKnown } from './look_up.js';
import { ColumnChoices, outcomeText, Preview } from './preview.js';
import { workOf } from './stages.js';
import { words } from './words.js';
import './ramp.css';

/** What was pasted stays while one looks at an order. */
const pasted = signal('');
const wanted = signal<readonly StageName[]>(['setNumber']);
const ended = signal<Outcomes>(new Map());

function useTable(text: string) {
  const table = useMemo(() => readTable(text), [text]);
  const guessed = useMemo(() => guess(table), [table]);
  const [chosen, setChosen] = useState<Columns>();
  const columns = chosen?.length === guessed.length ? chosen : guessed;
  const lines = useMemo(() => linesOf(table, columns), [table, columns]);
  return { table, columns, lines, setChosen };
}

/** A scan stands in the column of the parcels. */
function scannedLine(code: string, columns: Columns, text: string): string {
  const between = ['\t', ';', ','].find((mark) => text.split('\n', 1)[0]?.includes(mark)) ?? '\t';
  return between.repeat(Math.max(0, columns.indexOf('number'))) + code;
}

function wrongColumns(columns: Columns): string {
  const used = columns.filter(Boolean);
  if (!used.includes('number')) return words.noParcelColumn;
  return new Set(used).size < used.length ? words.sameColumn : '';
}

function save(lines: readonly Judged[], name: string, last: string, textOf: (line: Judged) => string): void {
  const heads = [words.line, words.number, words.order, words.waybill, words.weight, words.cost, last];
  saveTable(name, heads, lines.map((line) => [
    line.at, line.texts.number, line.parcel?.FOrderID ?? '', line.texts.waybill, line.texts.weight, line.texts.cost,
    textOf(line),
  ]));
}

function StageChoices() {
  const toggle = (name: StageName) => {
    wanted.value = stageNames.filter((known) => wanted.value.includes(known) !== (known === name));
  };
  return (
    <fieldset class="row">
      <legend>{words.what}</legend>
      {stageNames.filter((name) => may(operations[name])).map((name) => (
        <label key={name} class="row">
          <input type="checkbox" checked={wanted.value.includes(name)} onChange={() => toggle(name)} /> {words[name]}
        </label>
      ))}
    </fieldset>
  );
}

export function RampScreen() {
  const text = pasted.value;
  const outcomes = ended.value;
  const { table, columns, lines, setChosen } = useTable(text);
  const { known, wrong, busy, count, again } = useKnown(lines);
  const stages = wanted.value;
  const judged = useMemo(() => judgeAll(lines, known, stages), [lines, known, stages, language.value]);
  const [work, setWork] = useState<Work>();
  const [scanned, setScanned] = useState('');
  useScans((code) => {
    pasted.value = withLine(pasted.value, scannedLine(code, columns, pasted.value));
    setScanned(code);
  });
  const undone = judged.filter((line) => !canBeDone(line) || outcomes.get(line.parcel.FID) !== '');
  const able = undone.filter(canBeDone);
  const errors = undone.filter((line) => line.errors.length);
  const checkAgain = () => {
    ended.value = new Map();
    again();
  };
  const misplaced = table.length ? wrongColumns(columns) : '';
  const ready = !busy && !misplaced && !wrong;
  const values = {
    count: judged.length, able: able.length, wrong: errors.length,
    warned: undone.filter((line) => line.warnings.length).length,
  };
  const resultOf = (line: Judged) => outcomeText(line, outcomes) || line.errors.join(' · ');
  return (
    <div class="ramp">
      <h1>{common.ramp}</h1>
      <Pasted label={words.paste} hint={words.hint} text={text} onText={(typed) => {
        pasted.value = typed;
        if (!typed) ended.value = new Map();
      }} />
      <p role="status" class={scanned ? 'quiet' : 'hidden'}>{scanned && fill(words.scanned, { code: scanned })}</p>
      {lines.length === 0 && <p class="quiet">{words.empty}</p>}
      {lines.length > 0 && (
        <>
          <StageChoices />
          <ColumnChoices example={table[0] ?? []} columns={columns} onChange={setChosen} />
          {misplaced && <p class="note bad" role="alert">{misplaced}</p>}
          {wrong && (
            <div class="note bad row" role="alert">
              {wrong} <button type="button" onClick={checkAgain}>{common.retry}</button>
            </div>
          )}
          {busy && <Bar text={words.lookingUp} done={Math.min(known.parcels.size, count)} count={count} />}
          <div role="status">
            {ready && <p>{fill(words.summary, values)} {errors.length > 0 && words.leftOut}</p>}
          </div>
          <div class="row">
            <button type="button" class="main" disabled={!ready || !able.length || !stages.length}
              onClick={() => setWork(workOf(able, stages))}>
              {fill(words.start, { count: able.length })}
            </button>
            <button type="button" onClick={checkAgain}>{words.checkAgain}</button>
            {errors.length > 0 && (
              <button type="button" onClick={() => (
                save(errors, common.ramp, words.error, (line) => line.errors.join(' · '))
              )}>{words.saveErrors}</button>
            )}
            {outcomes.size > 0 && (
              <button type="button" onClick={() => save(judged, common.ramp, words.outcome, resultOf)}>
                {words.saveAll}
              </button>
            )}
          </div>
          <Preview lines={judged} outcomes={outcomes} />
        </>
      )}
      {work && (
        <WorkDialog work={work} onClose={() => setWork(undefined)}
          onEnded={(found) => { ended.value = new Map([...ended.value, ...found]); }} />
      )}
    </div>
  );
}
