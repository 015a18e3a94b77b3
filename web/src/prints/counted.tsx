// The button that prints, and what is counted behind it. A browser does not tell whether its print was cancelled.
import { useEffect, useRef, useState } from 'preact/hooks';
import { may } from '../api/door.js';
import { Dialog } from '../parts/dialog.js';
import { wordsOf } from '../parts/problem.js';
import { say } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { countPrints, documents, newCounting, type Kind } from './data.js';
import { words } from './words.js';

/** Whoever may call one of these may count prints: the server asks the same. */
const printers = ['SavePrintSerialNumber', 'SaveLogWeight', 'Delivery'] as const;

interface Props {
  readonly kind: Kind;
  readonly keys: readonly number[];
  readonly onCounted: () => void;
}

export function PrintButton({ kind, keys, onCounted }: Props) {
  const [asking, setAsking] = useState(false);
  const [busy, setBusy] = useState(false);
  const [wrong, setWrong] = useState('');
  const counting = useRef(newCounting());
  useEffect(() => {
    counting.current = newCounting();
    const ask = () => setAsking(keys.length > 0 && documents[kind] !== undefined && printers.some(may));
    addEventListener('afterprint', ask);
    return () => removeEventListener('afterprint', ask);
  }, [kind, keys]);
  const count = async () => {
    setBusy(true);
    setWrong('');
    try {
      say('good', fill(words.counted, { count: await countPrints(kind, keys, counting.current) }));
      counting.current = newCounting();
      setAsking(false);
      onCounted();
    } catch (error) {
      setWrong(wordsOf(error));
    }
    setBusy(false);
  };
  return (
    <>
      <button type="button" class="main" disabled={!keys.length} onClick={() => print()}>{common.print}</button>
      {asking && (
        <Dialog title={words.wasPrinted} onClose={() => setAsking(false)}>
          <p>{fill(words.countAsk, { count: keys.length })}</p>
          {wrong && <div class="note bad" role="alert">{wrong}</div>}
          <div class="row end">
            {/* First, so that a scan that ends with Enter counts nothing. */}
            <button type="button" onClick={() => setAsking(false)}>{common.no}</button>
            <button type="button" class="main" disabled={busy} onClick={() => void count()}>
              {wrong ? common.retry : words.countNow}
            </button>
          </div>
        </Dialog>
      )}
    </>
  );
}
