// What was done with an order, the history first.
import type { HistoryLine } from '../api/workbench.js';
import { nameOf } from '../log/names.js';
import { common } from '../words/common.js';
import { fill, formatTime } from '../words/language.js';
import type { Line } from './lines.js';
import { words } from './words.js';

export function History({ history, lines }: { history: readonly HistoryLine[]; lines: readonly Line[] }) {
  const lineOf = (entry: number) => String(lines.find((line) => line['FEntryID'] === entry)?.['FIndex'] ?? entry);
  return (
    <section>
      <h2>{words.history}</h2>
      {history.length === 0 && <p class="quiet">{common.nothing}</p>}
      {history.length > 0 && (
        <div class="scrolls" tabIndex={0} role="region" aria-label={words.history}>
          <table>
            <thead>
              <tr><th>{words.when}</th><th>{words.who}</th><th>{words.what}</th><th>{words.change}</th></tr>
            </thead>
            <tbody>
              {history.map((line, index) => (
                <tr key={index}>
                  <td>{formatTime(line.FTime)}</td>
                  <td title={line.FAddress}>{line.FUserName}</td>
                  <td>
                    {nameOf(line)}{' '}
                    {line.FEntryID > 0 && (
                      <span class="quiet">{fill(words.lineOf, { line: lineOf(line.FEntryID) })}</span>
                    )}
                  </td>
                  <td>{[line.FOldValue, line.FNewValue].filter(Boolean).join(' → ')}</td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
    </section>
  );
}
