import { delivered, toBeDelivered, toBePicked } from '../orders/row.js';
import { valueWords } from '../orders/value_words.js';

/** An FOrderStatus in words. */
export function stateWords(state: number): string {
  const states: Readonly<Record<number, string>> = {
    [toBePicked]: valueWords.toBePicked, [toBeDelivered]: valueWords.toBeDelivered, [delivered]: valueWords.delivered,
  };
  return states[state] ?? String(state);
}
