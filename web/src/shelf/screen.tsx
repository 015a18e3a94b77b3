// Picking at the shelf, on a small screen in one hand.
import { useState } from 'preact/hooks';
import { Dialog } from '../parts/dialog.js';
import '../scan/scan.css';
import { common } from '../words/common.js';
import { Begin } from './begin.js';
import { End } from './end.js';
import { round } from './round.js';
import './shelf.css';
import { Walk } from './walk.js';
import { words } from './words.js';

function Leave() {
  const [asking, setAsking] = useState(false);
  return (
    <>
      <button type="button" class="plain leave" onClick={() => setAsking(true)}>{words.leave}</button>
      {asking && (
        <Dialog title={words.leave} onClose={() => setAsking(false)}>
          <p>{words.leaveAsk}</p>
          <div class="row end">
            <button type="button" onClick={() => setAsking(false)}>{common.cancel}</button>
            <button type="button" class="main" onClick={() => { round.value = null; }}>{words.leave}</button>
          </div>
        </Dialog>
      )}
    </>
  );
}

export function ShelfScreen() {
  const now = round.value;
  if (!now) return <div class="shelf"><Begin /></div>;
  const walking = now.at < now.lines.length;
  return (
    <div class="shelf">
      {walking && <h1 class="hidden">{common.shelf}</h1>}
      {walking ? <Walk now={now} /> : <End now={now} />}
      {!now.confirmed && <Leave />}
    </div>
  );
}
