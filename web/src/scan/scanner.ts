// A scanner is a keyboard that types very fast and ends with Enter. What it types is a scan wherever the focus is. A
// field with data-scans takes scans itself: its form gets all that stands in it, so that nothing of a slow scan is left.
import { useEffect, useRef } from 'preact/hooks';
import { isTyping } from '../parts/keys.js';

/** Keys of one scan come within so many milliseconds of each other. */
const gap = 30;
/** Fewer characters than these are keys that somebody pressed. */
const fewest = 3;

interface Burst {
  text: string;
  last: number;
  /** The field with the focus, and what it held before the scan. */
  field: HTMLInputElement | HTMLTextAreaElement | undefined;
  before: string;
}

function fieldOf(target: EventTarget | null): Burst['field'] {
  if (!isTyping(target)) return undefined;
  return target instanceof HTMLInputElement || target instanceof HTMLTextAreaElement ? target : undefined;
}

function takeBack({ field, before }: Burst): void {
  if (!field) return;
  field.value = before;
  field.dispatchEvent(new Event('input', { bubbles: true }));
}

/** Hears scans as long as the component stands. */
export function useScans(onScan: (code: string) => void): void {
  const latest = useRef(onScan);
  latest.current = onScan;
  useEffect(() => {
    let burst: Burst | undefined;
    const onKey = (event: KeyboardEvent) => {
      if (event.target instanceof HTMLElement && event.target.dataset['scans'] !== undefined) return;
      if (event.isComposing || event.ctrlKey || event.metaKey || event.altKey || event.key === 'Shift') return;
      const fast = burst !== undefined && event.timeStamp - burst.last <= gap;
      if (event.key === 'Enter' && burst && fast && burst.text.length >= fewest) {
        event.preventDefault();
        event.stopPropagation();
        takeBack(burst);
        latest.current(burst.text.trim());
        burst = undefined;
        return;
      }
      if (event.key.length !== 1) {
        burst = undefined;
        return;
      }
      if (!burst || !fast) {
        const field = fieldOf(event.target);
        burst = { text: '', last: 0, field, before: field?.value ?? '' };
      }
      burst.text += event.key;
      burst.last = event.timeStamp;
      // A blank of a scan must not press the button that has the focus, nor a letter be a shortcut.
      if (burst.text.length > 1 && !burst.field) {
        event.preventDefault();
        event.stopPropagation();
      }
    };
    addEventListener('keydown', onKey, true);
    return () => removeEventListener('keydown', onKey, true);
  }, []);
}
