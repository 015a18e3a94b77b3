// The field that finds an order by any of its numbers, from every screen.
import { useRef, useState } from 'preact/hooks';
import { ask, type FoundOrder } from '../api/workbench.js';
import { useShortcut } from '../parts/keys.js';
import { sayError } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { go } from './route.js';
import { words } from './words.js';

const pause = 150;

export function FindOrder() {
  const field = useRef<HTMLInputElement>(null);
  const timer = useRef(0);
  const asking = useRef<AbortController>();
  const [found, setFound] = useState<FoundOrder[]>();
  const [at, setAt] = useState(0);
  useShortcut('/', words.keyFind, () => field.current?.select());

  const open = (order: FoundOrder | undefined) => {
    if (!order) return;
    setFound(undefined);
    field.current?.blur();
    go(`order/${order.FID}`);
  };
  const look = async (text: string, openOnly: boolean) => {
    asking.current?.abort();
    asking.current = new AbortController();
    const { signal } = asking.current;
    try {
      const orders = text ? await ask('find', { text }, signal) : undefined;
      if (openOnly && orders?.length === 1) {
        open(orders[0]);
        return;
      }
      setFound(orders);
      setAt(0);
    } catch (error) {
      if (!signal.aborted) sayError(error);
    }
  };
  const typed = () => {
    clearTimeout(timer.current);
    timer.current = window.setTimeout(() => void look(field.current?.value.trim() ?? '', false), pause);
  };
  const onKey = (event: KeyboardEvent) => {
    if (event.key === 'Escape') {
      setFound(undefined);
      field.current?.blur();
    } else if (event.key === 'Enter') {
      clearTimeout(timer.current);
      if (found?.length) open(found[at]);
      else void look(field.current?.value.trim() ?? '', true);
    } else if (found?.length && (event.key === 'ArrowDown' || event.key === 'ArrowUp')) {
      event.preventDefault();
      setAt((at + (event.key === 'ArrowDown' ? 1 : found.length - 1)) % found.length);
    }
  };
  return (
    <div class="find" role="search">
      <input ref={field} type="search" role="combobox" aria-label={words.findOrder} placeholder={`${words.findOrder}  /`}
        aria-expanded={found !== undefined} aria-controls="found" aria-activedescendant={found?.length ? `found-${at}` : undefined}
        autocomplete="off" onInput={typed} onKeyDown={onKey} onBlur={() => setTimeout(() => setFound(undefined), pause)} />
      {found && (
        <ul id="found" role="listbox" aria-label={words.findOrder}>
          {found.length === 0 && <li role="option" aria-selected="false" class="quiet">{common.nothing}</li>}
          {found.map((order, index) => (
            <li key={order.FID} id={`found-${index}`} role="option" aria-selected={index === at}
              onMouseDown={(event) => { event.preventDefault(); open(order); }}>
              <b>{order.FOrderID}</b> {order.FConsignee}{' '}
              <span class="quiet">{[order.FSiteOrderID, order.FLogisticsOrder].filter(Boolean).join(' · ')}</span>
            </li>
          ))}
        </ul>
      )}
    </div>
  );
}
