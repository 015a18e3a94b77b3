// Which columns are shown, where, how wide, and which stay at the left.
import { Dialog } from '../parts/dialog.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { change, leastWidth, mostWidth, move, narrow, type Place } from './layout.js';
import { words } from './words.js';

interface Props {
  readonly places: readonly Place[];
  readonly captionOf: (name: string) => string;
  readonly onChange: (places: Place[]) => void;
  readonly onReset: () => void;
  readonly onClose: () => void;
}

export function ColumnsDialog({ places, captionOf, onChange, onReset, onClose }: Props) {
  return (
    <Dialog title={words.columns} onClose={onClose} wide>
      <div class="columns" tabIndex={0} role="region" aria-label={words.columns}>
        <table>
          <thead>
            <tr>
              <th>{words.column}</th><th>{words.shown}</th><th>{words.pinned}</th><th>{words.width}</th>
              <th>{words.place}</th>
            </tr>
          </thead>
          <tbody>
            {places.map(({ name, shown, pinned, width }, index) => {
              const column = captionOf(name);
              const before = places[index - 1];
              const behind = places[index + 1];
              return (
                <tr key={name}>
                  <td>{column}</td>
                  <td>
                    <input type="checkbox" checked={shown} aria-label={fill(words.showColumn, { column })}
                      onChange={() => onChange(change(places, name, { shown: !shown }))} />
                  </td>
                  <td>
                    <input type="checkbox" checked={pinned} aria-label={fill(words.pinColumn, { column })}
                      onChange={() => onChange(change(places, name, { pinned: !pinned }))} />
                  </td>
                  <td>
                    <input type="number" value={width} min={leastWidth} max={mostWidth} step={10}
                      aria-label={fill(words.widthOf, { column })}
                      onChange={(event) => {
                        const wanted = Number(event.currentTarget.value) || width;
                        onChange(change(places, name, { width: narrow(wanted) }));
                      }} />
                  </td>
                  <td class="moves">
                    <button type="button" aria-label={fill(words.earlier, { column })} disabled={!before}
                      onClick={() => before && onChange(move(places, name, before.name))}>↑</button>
                    <button type="button" aria-label={fill(words.later, { column })} disabled={!behind}
                      onClick={() => behind && onChange(move(places, name, behind.name))}>↓</button>
                  </td>
                </tr>
              );
            })}
          </tbody>
        </table>
      </div>
      <div class="row end">
        <button type="button" onClick={onReset}>{words.reset}</button>
        <button type="button" class="main" onClick={onClose}>{common.close}</button>
      </div>
    </Dialog>
  );
}
