// What calls change while one looks at it.
import { useEffect, useRef } from 'preact/hooks';
import { caller } from './door.js';

interface Call {
  readonly orders?: readonly number[];
  /** The user of the door. */
  readonly caller: string;
}

const together = 500;
const openAgainAfter = 5000;

/** Calls back with the keys of the orders that calls changed, and whether all of the calls were this user's own. */
export function useChanges(onChange: (orders: readonly number[], own: boolean) => void): void {
  const latest = useRef(onChange);
  latest.current = onChange;
  useEffect(() => {
    let source: EventSource;
    let timer = 0;
    let reopening = 0;
    let own = true;
    const changed = new Set<number>();
    const tell = () => {
      timer = 0;
      latest.current([...changed], own);
      changed.clear();
      own = true;
    };
    const open = () => {
      source = new EventSource('/api/v1/events');
      source.addEventListener('call', (event) => {
        const call = JSON.parse(event.data) as Call;
        if (!call.orders?.length) return;
        call.orders.forEach((order) => changed.add(order));
        own &&= call.caller === caller.value?.user;
        timer ||= window.setTimeout(tell, together);
      });
      // After an answer that is no stream the browser does not try again by itself.
      source.addEventListener('error', () => {
        if (source.readyState === EventSource.CLOSED) reopening = window.setTimeout(open, openAgainAfter);
      });
    };
    open();
    return () => {
      source.close();
      clearTimeout(timer);
      clearTimeout(reopening);
    };
  }, []);
}
