// The packing desk: parcels are scanned, looked at, weighed and done, without a mouse.
import { useEffect, useRef, useState } from 'preact/hooks';
import { Dialog } from '../parts/dialog.js';
import { setSounds, sounds } from '../scan/sounds.js';
import { useScans } from '../scan/scanner.js';
import { ToldNote } from '../scan/told.js';
import { WaitingNote } from '../scan/waiting_note.js';
import { words as scanWords } from '../scan/words.js';
import { common } from '../words/common.js';
import { fill, formatNumber } from '../words/language.js';
import '../scan/scan.css';
import './desk.css';
import {
  asked, beginWith, complete, kilograms, looking, onScan, parcel, putAside, takeWeight, tolerance,
} from './parcel.js';
import { ParcelView } from './parcel_view.js';
import { ShiftList } from './shift_list.js';
import { words } from './words.js';

/** The field takes the focus back whenever nothing else has it. */
function useHeldFocus() {
  const field = useRef<HTMLInputElement>(null);
  useEffect(() => {
    const hold = () => {
      if (document.activeElement === document.body && !document.querySelector('dialog[open]')) field.current?.focus();
    };
    const later = () => setTimeout(hold);
    if (!document.querySelector('dialog[open]')) field.current?.focus();
    addEventListener('focusout', later);
    addEventListener('focus', later);
    return () => {
      removeEventListener('focusout', later);
      removeEventListener('focus', later);
    };
  }, []);
  return field;
}

function Settings() {
  return (
    <details>
      <summary>{words.settings}</summary>
      <div class="row">
        <label class="row">
          {words.tolerance}
          <input type="number" min="0" max="1000" value={tolerance.value}
            onChange={({ currentTarget: field }) => {
              if (field.checkValidity() && field.value) tolerance.value = field.valueAsNumber;
              else field.value = String(tolerance.value);
            }} />
        </label>
        <label class="row">
          <input type="checkbox" checked={sounds.value} onChange={(event) => setSounds(event.currentTarget.checked)} />
          {scanWords.sounds}
        </label>
      </div>
    </details>
  );
}

function WeightQuestion() {
  const weight = asked.value;
  const expected = parcel.value?.found?.expected ?? 0;
  if (weight === undefined) return null;
  const percent = formatNumber((Math.abs(weight - expected) / expected) * 100, 0);
  const values = { weight: kilograms(weight), expected: kilograms(expected), percent };
  return (
    <Dialog title={words.deviates} onClose={() => { asked.value = undefined; }}>
      <p class="large">{fill(words.deviation, values)}</p>
      <ToldNote />
      <div class="row end">
        <button type="button" autofocus onClick={() => { asked.value = undefined; }}>{common.cancel}</button>
        <button type="button" class="main" onClick={() => takeWeight(weight)}>{fill(words.take, values)}</button>
      </div>
    </Dialog>
  );
}

export function DeskScreen() {
  const field = useHeldFocus();
  const [text, setText] = useState('');
  useEffect(beginWith, []);
  useScans((code) => {
    onScan(code);
    if (!document.querySelector('dialog[open]')) field.current?.focus();
  });
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    const typed = field.current?.value.trim();
    if (typed) onScan(typed);
    else complete();
    setText('');
  };
  const back = (run: () => void) => () => {
    run();
    field.current?.focus();
  };
  return (
    <div class="desk">
      <h1 class="hidden">{common.desk}</h1>
      <form class="stack" onSubmit={submit}>
        <label class="field">
          {words.scanHere}
          <input ref={field} class="scan" data-scans value={text} autocomplete="off" autocapitalize="off"
            spellcheck={false} onInput={(event) => setText(event.currentTarget.value)}
            onKeyDown={(event) => { if (event.key === 'Escape') { setText(''); putAside(); } }} />
        </label>
        <p class="quiet">{looking.value ? common.loading : words.hint}</p>
      </form>
      {asked.value === undefined && <ToldNote ready={words.ready} />}
      <WaitingNote />
      {parcel.value && (
        <ParcelView parcel={parcel.value}>
          <div class="row">
            <button type="button" class="main" disabled={parcel.value.why !== ''} onClick={back(complete)}>
              {words.complete} <kbd>Enter</kbd>
            </button>
            <button type="button" onClick={back(putAside)}>{words.putAside} <kbd>Esc</kbd></button>
          </div>
        </ParcelView>
      )}
      <ShiftList />
      <Settings />
      <WeightQuestion />
    </div>
  );
}
