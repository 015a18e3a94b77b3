// A field for tables and numbers: they are pasted, typed, read from a file, or dropped on it.
import { useRef, useState } from 'preact/hooks';
import { pastedWords as words } from './pasted_words.js';
import { say, sayError } from './toasts.js';

interface Props {
  readonly label: string;
  readonly hint?: string;
  readonly text: string;
  readonly onText: (text: string) => void;
}

/** Workbooks are archives and begin as such. */
const archive = 'PK';

/** Spreadsheets save CSV in UTF-8 or, in China, in its national code. */
async function textOf(file: File): Promise<string | undefined> {
  const bytes = await file.arrayBuffer();
  let text: string;
  try {
    text = new TextDecoder('utf-8', { fatal: true }).decode(bytes);
  } catch {
    text = new TextDecoder('gb18030').decode(bytes);
  }
  return text.startsWith(archive) && text.includes('\0') ? undefined : text;
}

/** A text with a line more. */
export function withLine(text: string, line: string): string {
  return `${text}${text && !text.endsWith('\n') ? '\n' : ''}${line}\n`;
}

export function Pasted({ label, hint, text, onText }: Props) {
  const chooser = useRef<HTMLInputElement>(null);
  const [over, setOver] = useState(false);
  const read = async (file: File | undefined) => {
    if (!file) return;
    try {
      const found = await textOf(file);
      if (found === undefined) say('bad', words.noTable);
      else onText(found);
    } catch (error) {
      sayError(error);
    }
  };
  return (
    <div class="stack">
      <label class="field">
        {label}
        <textarea rows={6} value={text} class={over ? 'over' : ''} spellcheck={false}
          onInput={(event) => onText(event.currentTarget.value)}
          onDragOver={(event) => { event.preventDefault(); setOver(true); }} onDragLeave={() => setOver(false)}
          onDrop={(event) => {
            setOver(false);
            const file = event.dataTransfer?.files[0];
            if (!file) return;
            event.preventDefault();
            void read(file);
          }} />
      </label>
      {hint && <p class="quiet">{hint}</p>}
      <div class="row">
        <button type="button" onClick={() => chooser.current?.click()}>{words.file}</button>
        <button type="button" disabled={!text} onClick={() => onText('')}>{words.empty}</button>
        <input ref={chooser} type="file" accept=".csv,.txt,.tsv,text/plain,text/csv" hidden aria-label={words.file}
          onChange={(event) => {
            const field = event.currentTarget;
            void read(field.files?.[0]).then(() => { field.value = ''; });
          }} />
      </div>
    </div>
  );
}
