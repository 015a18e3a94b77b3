// Which days the figures are of. The link says it.
export const lengths = [1, 7, 30] as const;

export interface Range {
  /** The last day, as 2026-11-22. */
  readonly day: string;
  readonly days: number;
  /** The first moment of the first day, and the last of the last. */
  readonly from: string;
  readonly to: string;
}

const two = (value: number) => String(value).padStart(2, '0');

export function dayText(date: Date): string {
  return `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())}`;
}

export const today = () => dayText(new Date());

export function rangeOf(query: URLSearchParams): Range {
  const said = query.get('day') ?? '';
  const day = /^\d{4}-\d\d-\d\d$/.test(said) ? said : today();
  const days = lengths.find((known) => String(known) === query.get('days')) ?? 1;
  const first = new Date(`${day}T00:00:00`);
  first.setDate(first.getDate() - days + 1);
  return { day, days, from: `${dayText(first)}T00:00:00`, to: `${day}T23:59:59.997` };
}

/** As the database writes it: 2026-11-22T13:45:01. */
export function timeText(time: Date): string {
  return `${dayText(time)}T${[time.getHours(), time.getMinutes(), time.getSeconds()].map(two).join(':')}`;
}

/** The last moment before an end, as lists of orders take it. */
export function before(end: string): string {
  return `${timeText(new Date(new Date(end).getTime() - 1))}.997`;
}
