// The switches of the ERP that decide how orders are worked on.
import { useState } from 'preact/hooks';
import { answerOf, door } from '../api/door.js';
import { ask } from '../api/workbench.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { say } from '../parts/toasts.js';
import { operationWords } from '../log/names.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { FormDialog } from './form_dialog.js';
import { switchWords } from './switch_words.js';
import { words } from './words.js';

const scheme = 'DownloadWebTpls';
const logSwitch = /^TradeLog(\d+)$/;

function helpOf(key: string): string {
  const code = logSwitch.exec(key)?.[1];
  if (code) return fill(words.logsOperation, { operation: operationWords(code) });
  return switchWords[key as keyof typeof switchWords] ?? '';
}

export function Switches() {
  const switches = useLoaded('', (stop) => ask('switches', {}, stop));
  const [value, setValue] = useState<string>();
  return (
    <>
      <p class="quiet">{words.switchesNote}</p>
      <LoadNote of={switches} />
      {switches.data?.length === 0 && <p class="quiet">{common.nothing}</p>}
      {switches.data && switches.data.length > 0 && (
        <div class="scrolls" tabIndex={0} role="region" aria-label={words.switches}>
          <table>
            <thead>
              <tr><th>{words.switchName}</th><th>{words.value}</th><th>{words.meaning}</th><th>{words.erpText}</th></tr>
            </thead>
            <tbody>
              {switches.data.map(({ FCategory, FKey, FValue, FDescription }) => (
                <tr key={`${FCategory}/${FKey}`}>
                  <td><b>{FKey}</b> <span class="quiet">{FCategory}</span></td>
                  <td>
                    {FValue}{' '}
                    {FKey === scheme && (
                      <button type="button" aria-label={`${words.change}: ${FKey}`} onClick={() => setValue(FValue)}>
                        {words.change}
                      </button>
                    )}
                  </td>
                  <td>{helpOf(FKey)}</td>
                  <td class="quiet">{FDescription}</td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
      {value !== undefined && (
        <FormDialog title={scheme} main={common.save} onClose={() => setValue(undefined)} onSubmit={async (key) => {
          await answerOf(door.POST('/api/v1/clsSaveData/DownloadWebTpls', {
            body: { lScheme: Number(value) }, params: { header: { 'Idempotency-Key': key } },
          }));
          setValue(undefined);
          say('good', words.saved);
          switches.again();
        }}>
          <label class="field">
            {words.scheme}
            <input type="number" required step={1} value={value} onInput={(event) => setValue(event.currentTarget.value)} />
          </label>
          <p class="quiet">{switchWords.DownloadWebTpls}</p>
        </FormDialog>
      )}
    </>
  );
}
