// What this desk did in this shift, the latest first, and how to take it back.
import { useEffect, useState } from 'preact/hooks';
import { Dialog } from '../parts/dialog.js';
import { dropOld, shift, type Done } from '../scan/shift.js';
import { waiting } from '../scan/waiting.js';
import { linkTo } from '../shell/route.js';
import { common } from '../words/common.js';
import { dateForm, fill } from '../words/language.js';
import { kilograms, undo } from './parcel.js';
import { words } from './words.js';

/** A refused one whose order is not known changed nothing. */
function stands({ undone, refused, order }: Done): boolean {
  return !undone && !(refused && order === undefined);
}

function stateOf({ key, undone, refused }: Done): string {
  if (undone) return words.undone;
  if (refused) return words.refused;
  return waiting.value.some((item) => item.key.startsWith(key)) ? words.waits : words.saved;
}

function DoneRow({ done }: { done: Done }) {
  const order = done.name ?? done.number;
  const time = dateForm({ timeStyle: 'short' }).format(done.at);
  return (
    <tr>
      <td>{time}</td>
      <td>{done.order === undefined ? order : <a href={linkTo(`order/${done.order}`)}>{order}</a>}</td>
      <td class="number">
        {done.weight === undefined ? '' : fill(words.kilograms, { weight: kilograms(done.weight) })}
      </td>
      <td>{stateOf(done)}</td>
      <td>
        {stands(done) && (
          <button type="button" aria-label={fill(words.undoOf, { order })} onClick={() => undo(done)}>
            {common.undo}
          </button>
        )}
      </td>
    </tr>
  );
}

export function ShiftList() {
  const [asking, setAsking] = useState(false);
  useEffect(() => dropOld(), []);
  const stand = shift.value.filter(stands).length;
  const empty = () => {
    shift.value = [];
    setAsking(false);
  };
  return (
    <section class="shift">
      <div class="row">
        <h2>{fill(words.shift, { count: stand })}</h2>
        {shift.value.length > 0 && <button type="button" onClick={() => setAsking(true)}>{words.newShift}</button>}
      </div>
      {shift.value.length > 0 && (
        <div class="scrolled" tabIndex={0} role="region" aria-label={fill(words.shift, { count: stand })}>
          <table>
            <thead>
              <tr>
                <th>{words.time}</th><th>{words.order}</th><th class="number">{words.weight}</th><th>{words.state}</th>
                <th><span class="hidden">{common.undo}</span></th>
              </tr>
            </thead>
            <tbody>{shift.value.map((done) => <DoneRow key={done.key} done={done} />)}</tbody>
          </table>
        </div>
      )}
      {asking && (
        <Dialog title={words.newShift} onClose={() => setAsking(false)}>
          <p>{words.newShiftAsk}</p>
          <div class="row end">
            <button type="button" onClick={() => setAsking(false)}>{common.cancel}</button>
            <button type="button" class="main" onClick={empty}>{words.newShift}</button>
          </div>
        </Dialog>
      )}
    </section>
  );
}
