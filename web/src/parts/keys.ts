// Keys of the page. A key works wherever the focus is, but not while one types.
import { useEffect, useRef } from 'preact/hooks';
import { signal } from '@preact/signals';

interface Shortcut {
  readonly key: string;
  readonly help: string;
  readonly run: () => void;
}

/** The keys that work now, for the list of keys. */
export const shortcuts = signal<readonly Shortcut[]>([]);

export function isTyping(target: EventTarget | null): boolean {
  if (!(target instanceof HTMLElement)) return false;
  if (target instanceof HTMLInputElement) return !['checkbox', 'radio', 'button', 'submit'].includes(target.type);
  return target instanceof HTMLTextAreaElement || target instanceof HTMLSelectElement || target.isContentEditable;
}

/** Makes a key work as long as the component stands. @param key as KeyboardEvent.key names it */
export function useShortcut(key: string, help: string, run: () => void): void {
  const latest = useRef(run);
  latest.current = run;
  useEffect(() => {
    const own: Shortcut = { key, help, run: () => latest.current() };
    shortcuts.value = [...shortcuts.value, own];
    return () => {
      shortcuts.value = shortcuts.value.filter((other) => other !== own);
    };
  }, [key, help]);
}

addEventListener('keydown', (event) => {
  if (event.ctrlKey || event.metaKey || event.altKey || isTyping(event.target)) return;
  if (document.querySelector('dialog[open]')) return;
  const found = [...shortcuts.value].reverse().find((shortcut) => shortcut.key === event.key);
  if (!found) return;
  event.preventDefault();
  found.run();
});
