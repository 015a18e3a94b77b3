// Saves a list of orders for a spreadsheet.
import { saveTable } from '../parts/csv.js';
import { stateWords } from '../steps/state_words.js';
import { columnWords } from './column_words.js';
import { allRows } from './names.js';
import { stateOf, textOf } from './row.js';
import type { ShortColumn } from './short_list.js';
import { shortListWords as words } from './short_list_words.js';

/** @param name of the file */
export async function saveOrders(
  name: string, keys: readonly number[], columns: readonly ShortColumn[],
): Promise<void> {
  const heads = [columnWords.FOrderID, columnWords.FConsignee, words.state, ...columns.map(({ caption }) => caption)];
  saveTable(name, heads, (await allRows(keys)).map((row) => [
    textOf(row, 'FOrderID'), textOf(row, 'FConsignee'), stateWords(stateOf(row)),
    ...columns.map((column) => column.textOf(row)),
  ]));
}
