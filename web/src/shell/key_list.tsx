import { useState } from 'preact/hooks';
import { Dialog } from '../parts/dialog.js';
import { shortcuts, useShortcut } from '../parts/keys.js';
import { common } from '../words/common.js';
import { words } from './words.js';

export function KeyList() {
  const [open, setOpen] = useState(false);
  useShortcut('?', words.keysHelp, () => setOpen(true));
  return (
    <>
      <button type="button" class="plain" aria-label={words.keysHelp} title={words.keysHelp} onClick={() => setOpen(true)}>
        <kbd>?</kbd>
      </button>
      {open && (
        <Dialog title={words.keys} onClose={() => setOpen(false)}>
          <table>
            <tbody>
              {shortcuts.value.map(({ key, help }) => (
                <tr key={key}><td><kbd>{key}</kbd></td><td>{help}</td></tr>
              ))}
            </tbody>
          </table>
          <div class="row end"><button type="button" onClick={() => setOpen(false)}>{common.close}</button></div>
        </Dialog>
      )}
    </>
  );
}
