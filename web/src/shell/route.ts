// Where on the page one is: "#/orders?tab=2" is the screen "orders" with what the link says of it.
import { signal } from '@preact/signals';

export interface Route {
  /** The parts of the path: ["order", "75"]. */
  readonly path: readonly string[];
  readonly query: URLSearchParams;
}

/** A part of a link that somebody broke stands for itself. */
function decoded(part: string): string {
  try {
    return decodeURIComponent(part);
  } catch {
    return part;
  }
}

function read(): Route {
  const [path = '', query = ''] = location.hash.replace(/^#\/?/, '').split('?', 2);
  return { path: path.split('/').filter(Boolean).map(decoded), query: new URLSearchParams(query) };
}

export const route = signal<Route>(read());
addEventListener('hashchange', () => (route.value = read()));

export function linkTo(path: string, query?: Record<string, string> | URLSearchParams): string {
  const text = new URLSearchParams(query).toString();
  return `#/${path}${text ? `?${text}` : ''}`;
}

/** @param replace whether the place before is left out of the history */
export function go(path: string, query?: Record<string, string> | URLSearchParams, replace = false): void {
  const link = linkTo(path, query);
  if (link === location.hash) return;
  if (replace) {
    history.replaceState(null, '', link);
    route.value = read();
  } else {
    location.hash = link;
  }
}
