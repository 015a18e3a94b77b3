// Order, widths, and what is shown and pinned of a grid's columns.

export interface Place {
  readonly name: string;
  readonly width: number;
  readonly shown: boolean;
  /** Stays at the left while the rest moves. */
  readonly pinned: boolean;
}

export const leastWidth = 48;
export const mostWidth = 600;

/** The kept places of those columns that are still there, then the new ones. */
export function arrange(places: readonly Place[], kept: readonly Place[] | undefined): Place[] {
  if (!kept) return [...places];
  const known = new Set(places.map(({ name }) => name));
  const old = kept.filter(({ name }) => known.has(name));
  const names = new Set(old.map(({ name }) => name));
  return [...old, ...places.filter(({ name }) => !names.has(name))];
}

export function change(places: readonly Place[], name: string, changed: Partial<Place>): Place[] {
  return places.map((place) => (place.name === name ? { ...place, ...changed } : place));
}

/** Puts a column to where another one is. */
export function move(places: readonly Place[], name: string, to: string): Place[] {
  const from = places.findIndex((place) => place.name === name);
  const target = places.findIndex((place) => place.name === to);
  const moved = places[from];
  if (!moved || target < 0) return [...places];
  const rest = places.filter((place) => place !== moved);
  rest.splice(target, 0, moved);
  return rest;
}

/** Puts a column before or behind the next one that is shown and pinned as it is. */
export function step(places: readonly Place[], name: string, by: 1 | -1): Place[] {
  const own = places.find((place) => place.name === name);
  const alike = places.filter((place) => place.shown === own?.shown && place.pinned === own.pinned);
  const to = alike[alike.findIndex((place) => place === own) + by];
  return to ? move(places, name, to.name) : [...places];
}

export function narrow(width: number): number {
  return Math.round(Math.min(mostWidth, Math.max(leastWidth, width)));
}
