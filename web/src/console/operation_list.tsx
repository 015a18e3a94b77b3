// The operations, found by their name and help.
import { useRef, useState } from 'preact/hooks';
import { linkTo } from '../shell/route.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import type { Operation } from './document.js';
import { words } from './words.js';

/** Every word has to stand somewhere; operations whose name has them come first. */
function matching(operations: readonly Operation[], text: string): Operation[] {
  const wanted = text.toLowerCase().split(/\s+/).filter(Boolean);
  const has = (whole: string) => wanted.every((word) => whole.toLowerCase().includes(word));
  const named = operations.filter(({ path }) => has(path));
  const helped = operations.filter((one) => !named.includes(one) && has(`${one.path} ${one.summary} ${one.help}`));
  return [...named, ...helped];
}

export function OperationList({ operations, here }: { operations: readonly Operation[]; here: string }) {
  const [text, setText] = useState('');
  const part = useRef<HTMLElement>(null);
  const shown = matching(operations, text);
  /** Up from the first link is the field. */
  const onKey = (event: KeyboardEvent) => {
    const by = event.key === 'ArrowDown' ? 1 : event.key === 'ArrowUp' ? -1 : 0;
    if (!by) return;
    event.preventDefault();
    const stops = [...part.current?.querySelectorAll<HTMLElement>('input, a') ?? []];
    stops[stops.indexOf(document.activeElement as HTMLElement) + by]?.focus();
  };
  return (
    <nav ref={part} class="operations" aria-label={words.operations} onKeyDown={onKey}>
      <input type="search" aria-label={words.find} placeholder={words.find} value={text} autocomplete="off"
        onInput={(event) => setText(event.currentTarget.value)} />
      <span class="hidden" role="status">{fill(words.found, { count: shown.length })}</span>
      {shown.length === 0 && <p class="quiet">{common.nothing}</p>}
      <ul>
        {shown.map(({ path, name, className, summary, writes }) => (
          <li key={path}>
            <a href={linkTo(`console/${path}`)} aria-current={path === here ? 'page' : undefined} title={className}>
              <b>{name}</b><small>{writes ? words.changes : words.reads}</small>
              <span class="quiet" lang="en">{summary}</span>
            </a>
          </li>
        ))}
      </ul>
    </nav>
  );
}
