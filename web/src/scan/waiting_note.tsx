// How many writes wait for the server, and which were refused.
import { caller } from '../api/door.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { forget, refused, waiting } from './waiting.js';
import { words } from './words.js';

export function WaitingNote() {
  const count = waiting.value.length;
  const by = waiting.value[0]?.by;
  return (
    <>
      <div role="status" aria-live="polite">
        {count > 0 && <p class="note warn">{fill(words.waiting, { count })}</p>}
        {by !== undefined && by !== caller.value?.user && (
          <p class="note warn">{fill(words.ofAnother, { user: by })}</p>
        )}
      </div>
      {refused.value.map(({ key, label, why }) => (
        <div key={key} class="note bad row" role="alert">
          <span>{fill(words.refused, { what: label, why })}</span>
          <button type="button" onClick={() => forget(key)}>{common.close}</button>
        </div>
      ))}
    </>
  );
}
