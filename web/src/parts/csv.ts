// Tables as text: read from a file or the clipboard, and written for a spreadsheet.
import { parse, unparse } from 'papaparse';

/** The rows of a text with commas, semicolons or tabs between its values; empty lines are left out. */
export function readTable(text: string): string[][] {
  const { data } = parse<string[]>(text.replace(/^\uFEFF/, ''), { skipEmptyLines: 'greedy' });
  return data.map((row) => row.map((value) => value.trim()));
}

/** Has the browser save a table. @param name of the file, without its end */
export function saveTable(name: string, heads: readonly string[], rows: readonly (readonly (string | number)[])[]): void {
  // A value that a spreadsheet would take for a formula becomes a text there; the mark makes it read UTF-8.
  const text = unparse({ fields: [...heads], data: rows.map((row) => [...row]) }, { escapeFormulae: true });
  const link = document.createElement('a');
  link.href = URL.createObjectURL(new Blob(['\uFEFF', text], { type: 'text/csv' }));
  link.download = `${name}.csv`;
  link.click();
  // The browser reads it after the click.
  setTimeout(() => URL.revokeObjectURL(link.href), 60_000);
}
