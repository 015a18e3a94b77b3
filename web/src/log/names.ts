// What entries of the log are of: operations by their codes, and fields of orders.
import { columnWords } from '../orders/column_words.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

/** The codes of operations that are logged. */
export const codes = ['2001', '3003', '3005', '3007', '3008', '3013', '3014'] as const;

export function operationWords(code: string): string {
  return words[`op${code}` as keyof typeof words] ?? fill(words.operation, { code });
}

export function nameOf({ FKind, FName }: { readonly FKind: string; readonly FName: string }): string {
  if (FKind === 'field') return columnWords[FName as keyof typeof columnWords] ?? FName;
  return operationWords(FName);
}
