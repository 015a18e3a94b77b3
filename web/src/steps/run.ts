// Makes a step for many orders, in blocks, and tells order by order what became of it.
import { answerOf, door, DoorError, newKey } from '../api/door.js';
import { ask, askRows } from '../api/workbench.js';
import { stateOf, textOf, toBeDelivered, type Row } from '../orders/row.js';
import { wordsOf } from '../parts/problem.js';
import { fill } from '../words/language.js';
import { stateWords } from './state_words.js';
import type { EachAnswer, How, Step, Undo, Values } from './steps.js';
import { words } from './words.js';

/** Why not, by order; "" for an order that can or that was done. */
export type Outcomes = ReadonlyMap<number, string>;

const block = 200;
/** Later blocks of a run are as large as this time, in milliseconds, allows. */
const blockTime = 500;
const smallestBlock = 20;
const largestBlock = 1000;
const tries = 4;
const firstPause = 1000;
const underWay = 409;

function blocksOf(keys: readonly number[], size: number): number[][] {
  const blocks: number[][] = [];
  for (let start = 0; start < keys.length; start += size) blocks.push(keys.slice(start, start + size));
  return blocks;
}

const wait = (time: number) => new Promise((done) => setTimeout(done, time));

/** A call that is made again as long as it may go well later. */
async function persist<Data>(call: () => Promise<Data>, stop: AbortSignal): Promise<Data> {
  for (let time = 1; ; ++time) {
    try {
      return await call();
    } catch (error) {
      const again = error instanceof DoorError && (error.passing || error.status === underWay);
      if (!again || time === tries || stop.aborted) throw error;
      await wait(firstPause * 2 ** (time - 1));
    }
  }
}

function readOutcomes(answer: EachAnswer, keys: readonly number[], outcomes: Map<number, string>): void {
  for (const { order, result, problem } of answer.orders ?? []) {
    const why = problem ? wordsOf(new DoorError(problem.status, problem)) : result === false ? words.nothingDone : '';
    outcomes.set(Number(order), why);
  }
  for (const order of answer.notFound ?? []) outcomes.set(Number(order), words.gone);
  for (const key of keys) if (!outcomes.has(key)) outcomes.set(key, words.nothingDone);
}

/** What stops each of the orders from being delivered. */
async function askBill(rows: readonly Row[]): Promise<Map<number, string>> {
  const body = { dctPara: { FID: rows.map(({ FID }) => FID).join(), FOrderStatus: toBeDelivered } };
  const { result } = await answerOf(door.POST('/api/v1/clsGetData/CheckBillStatus', { body }));
  const reasons: Record<string, string> = {
    Closed: words.closed, Refund: words.refund, Unchecked: words.unchecked, Locked: words.isLocked,
  };
  const byNumber = new Map(rows.map((row) => [textOf(row, 'FOrderID'), row.FID]));
  const why = new Map<number, string>();
  for (const [name, reason] of Object.entries(reasons)) {
    const numbers = String((result as Record<string, unknown> | null)?.[name] ?? '').split(',').filter(Boolean);
    for (const number of numbers) {
      const key = byNumber.get(number);
      if (key !== undefined) why.set(key, [why.get(key), reason].filter(Boolean).join(', '));
    }
  }
  return why;
}

export interface Progress {
  /** The orders as they are before the step. */
  readonly rows: Map<number, Row>;
  readonly outcomes: Map<number, string>;
}

export function newProgress(): Progress {
  return { rows: new Map(), outcomes: new Map() };
}

/** Finds out which orders can take the step. It goes on where it stopped before. */
export async function tryStep(
  step: Step, values: Values, keys: readonly number[], progress: Progress, stop: AbortSignal, onBlock: () => void,
): Promise<void> {
  const { rows, outcomes } = progress;
  const how: How = { params: { query: { each: 'order', 'dry-run': true } } };
  for (const keysOfBlock of blocksOf(keys.filter((key) => !outcomes.has(key)), block)) {
    if (stop.aborted) return;
    const found = await persist(() => askRows(keysOfBlock, stop), stop);
    const why = new Map<number, string>(keysOfBlock.map((key) => [key, words.gone]));
    for (const row of found) {
      rows.set(row.FID, row);
      const state = stateOf(row);
      const wrong = step.states && !step.states.includes(state);
      why.set(row.FID, wrong ? fill(words.wrongState, { state: stateWords(state) }) : step.idle?.(row) ?? '');
    }
    let able = found.filter((row) => !why.get(row.FID));
    if (step.checksBill && able.length) {
      (await persist(() => askBill(able), stop)).forEach((text, key) => why.set(key, text));
    }
    able = able.filter((row) => !why.get(row.FID));
    if (able.length) {
      const tried = able.map(({ FID }) => FID);
      readOutcomes(await persist(() => answerOf(step.call(tried.join(), values, how)), stop), tried, why);
    }
    keysOfBlock.forEach((key) => outcomes.set(key, why.get(key) ?? ''));
    onBlock();
  }
}

/** What a run needs of a step. */
export type Runnable = Pick<Step, 'call'> & Partial<Pick<Step, 'states'>>;

interface Block {
  readonly keys: readonly number[];
  readonly idempotencyKey: string;
}

/** A run of a step; a block that failed is tried again with its own key, so that nothing is made twice. */
export class Run {
  readonly outcomes = new Map<number, string>();
  /** The orders whose states were not asked yet. A few come first, so that people soon see how fast it goes. */
  private readonly windows: (readonly number[])[];
  /** Those of the last window that can take the step and were not sent yet. */
  private able: readonly number[] = [];
  /** What was sent and not answered. */
  private sent: Block | undefined;
  private size = block;

  constructor(private readonly step: Runnable, private readonly values: Values, readonly keys: readonly number[]) {
    this.windows = [keys.slice(0, block), ...blocksOf(keys.slice(block), largestBlock)];
  }

  get done(): number[] {
    return this.keys.filter((key) => this.outcomes.get(key) === '');
  }

  async go(stop: AbortSignal, onBlock: () => void): Promise<void> {
    let ahead: Promise<Outcomes> | undefined;
    while (!stop.aborted && (this.sent || this.able.length || this.windows[0])) {
      const window = this.windows[0];
      if (!this.sent && !this.able.length && window) {
        this.able = this.leaveOut(window, await (ahead ?? this.whyNot(window, stop)));
        this.windows.shift();
        ahead = undefined;
      }
      if (!this.sent && this.able.length) {
        this.sent = { keys: this.able.slice(0, this.size), idempotencyKey: newKey() };
        this.able = this.able.slice(this.size);
      }
      // Asked while the server is busy with this block, and of use in this run only.
      ahead ??= this.windows[0] && this.whyNot(this.windows[0], stop);
      ahead?.catch(() => undefined);
      if (this.sent) await this.send(this.sent, stop);
      onBlock();
    }
  }

  private async send({ keys, idempotencyKey }: Block, stop: AbortSignal): Promise<void> {
    const how: How = { params: { query: { each: 'order' }, header: { 'Idempotency-Key': idempotencyKey } } };
    const begun = performance.now();
    const answer = await persist(() => answerOf(this.step.call(keys.join(), this.values, how)), stop);
    const pace = keys.length / (performance.now() - begun);
    this.size = Math.max(smallestBlock, Math.min(largestBlock, Math.round(pace * blockTime)));
    readOutcomes(answer, keys, this.outcomes);
    this.sent = undefined;
  }

  /** Which of the orders others took elsewhere meanwhile. */
  private async whyNot(keys: readonly number[], stop: AbortSignal): Promise<Outcomes> {
    const { states } = this.step;
    if (!states) return new Map();
    const found = new Map((await persist(() => ask('states', { keys: [...keys] }, stop), stop)).map((row) => [row.FID, row]));
    return new Map(keys.flatMap((key): [number, string][] => {
      const state = found.get(key)?.FOrderStatus;
      if (state !== undefined && states.includes(state)) return [];
      return [[key, state === undefined ? words.gone : fill(words.wrongState, { state: stateWords(state) })]];
    }));
  }

  private leaveOut(keys: readonly number[], why: Outcomes): number[] {
    why.forEach((text, key) => this.outcomes.set(key, text));
    return keys.filter((key) => !why.has(key));
  }
}

/** Takes steps back. @param onBlock is told how many orders are through @return why not, by order */
export async function takeBack(undos: readonly Undo[], onBlock: (done: number) => void): Promise<Outcomes> {
  const outcomes = new Map<number, string>();
  for (const { step, values, keys } of undos) {
    const run = new Run(step, values, keys);
    try {
      await run.go(new AbortController().signal, () => undefined);
    } catch (error) {
      keys.forEach((key) => run.outcomes.has(key) || run.outcomes.set(key, wordsOf(error)));
    }
    run.outcomes.forEach((why, key) => outcomes.set(key, why));
    onBlock(outcomes.size);
  }
  return outcomes;
}
