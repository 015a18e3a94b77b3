// A scanner is a keyboard that types very fast and ends with Enter. What it types is a scan wherever the focus is. A
// field with data-scans takes scans itself: its form gets all that stands in it, so that nothing of a slow scan is left.
// It also takes what is typed where nothing takes letters, however slowly.
import { useEffect, useRef } from 'preact/hooks';
import { isTyping } from '../parts/keys.js';

/** How fast a scan comes. */
interface Pace {
  /** The longest time from key to key, in milliseconds. */
  readonly gap: number;
  /** Fewer characters are keys that somebody pressed. */
  readonly fewest: number;
}
/** In a field where people type. Nobody types six characters with less than 80 ms from key to key. */
const typingPaces: readonly Pace[] = [{ gap: 30, fewest: 3 }, { gap: 80, fewest: 6 }];
/** Elsewhere, for scanners over the air and for slow machines. */
const slowPaces: readonly Pace[] = [{ gap: 250, fewest: 3 }];

interface Burst {
  text: string;
  last: number;
  /** The longest time between two keys so far. */
  slowest: number;
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

/** The field that takes scans, where one stands that can be reached. */
function scanField(): HTMLInputElement | null {
  return document.querySelector('dialog[open]') ? null : document.querySelector<HTMLInputElement>('input[data-scans]');
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
      const field = fieldOf(event.target);
      // A blank presses the button that has the focus, and two signs are shortcuts of every screen.
      if (!isTyping(event.target) && /^[^\s/?]$/u.test(event.key)) {
        const taker = scanField();
        if (taker) {
          // The letter goes where the focus is now.
          taker.focus();
          event.stopPropagation();
          return;
        }
      }
      const paces = field ? typingPaces : slowPaces;
      const slowest = burst ? Math.max(burst.slowest, event.timeStamp - burst.last) : 0;
      const fast = burst !== undefined && paces.some(({ gap }) => slowest <= gap);
      const whole = burst && paces.some(({ gap, fewest }) => slowest <= gap && burst!.text.length >= fewest);
      if (event.key === 'Enter' && burst && whole) {
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
        burst = { text: '', last: 0, slowest: 0, field, before: field?.value ?? '' };
      }
      burst.text += event.key;
      burst.last = event.timeStamp;
      burst.slowest = fast ? slowest : 0;
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
