// Work on many orders: one or more stages one after the other, each in blocks, each order by itself.
import { Run, type Outcomes, type Runnable } from '../steps/run.js';
import type { Step } from '../steps/steps.js';
import { fill } from '../words/language.js';
import { workWords as words } from './work_words.js';

export type Call = Step['call'];
type Answer = Awaited<ReturnType<Call>>;

export interface Stage extends Runnable {
  readonly name: string;
}

export interface Work {
  readonly title: string;
  readonly stages: readonly Stage[];
  readonly keys: readonly number[];
  /** The number of an order, for the lists. */
  readonly nameOf: (key: number) => string;
  /** What has to be known before it starts. */
  readonly note?: string;
  /** Finds out why not, by order. */
  readonly attempt?: (stop: AbortSignal, onBlock: (done: number) => void) => Promise<Outcomes>;
  /** What takes back what was done. */
  readonly undo?: (done: readonly number[]) => Work;
}

/** How far a work is. A run stands for each stage that was begun. */
export type Runs = Run[];

/** Goes on where it stopped before. */
export async function goOn(
  { stages }: Work, able: readonly number[], runs: Runs, stop: AbortSignal, onBlock: () => void,
): Promise<void> {
  for (const [index, stage] of stages.entries()) {
    runs[index] ??= new Run(stage, {}, runs[index - 1]?.done ?? able);
    await runs[index].go(stop, onBlock);
    if (stop.aborted) return;
  }
}

/** What became of an order; "" when all stages were done, undefined when none was reached. */
export function outcomeOf({ stages }: Work, runs: Runs, key: number): string | undefined {
  const names: string[] = [];
  for (const [index, { name }] of stages.entries()) {
    const why = runs[index]?.outcomes.get(key);
    if (why === undefined) return names.length ? fill(words.onlyDone, { names: names.join(', ') }) : undefined;
    if (why) return stages.length > 1 ? `${name}: ${why}` : why;
    names.push(name);
  }
  return '';
}

/** A dry run of a stage. */
export function attemptOf(call: Call, keys: readonly number[]): NonNullable<Work['attempt']> {
  return async (stop, onBlock) => {
    const dry: Call = (some, values, { params }) => (
      call(some, values, { params: { ...params, query: { each: 'order', 'dry-run': true } } })
    );
    const run = new Run({ call: dry }, {}, keys);
    await run.go(stop, () => onBlock(run.outcomes.size));
    return run.outcomes;
  };
}

export function keysOf(list: string): number[] {
  return list.split(',').filter(Boolean).map(Number);
}

/** The answer of a call that is made for all orders at once, as if it told of each. */
export async function together(
  keys: string,
  call: Promise<{ data?: { result?: boolean; notFound?: string[] }; error?: unknown; response: Response }>,
): Promise<Answer> {
  const { data, error, response } = await call;
  if (!data) return { error, response };
  const { result, notFound = [] } = data;
  const missing = new Set(notFound);
  const orders = keysOf(keys).map(String).filter((order) => !missing.has(order))
    .map((order) => ({ order, ...(result === undefined ? {} : { result }) }));
  return { data: { orders, notFound }, response };
}
