// Shops, carriers, warehouses, employees and order types, asked for once.
import { signal } from '@preact/signals';
import { useEffect } from 'preact/hooks';
import { ask, type Choice } from '../api/workbench.js';
import { sayError } from '../parts/toasts.js';

const choices = signal<readonly Choice[]>([]);
let asked = false;

export function useChoices(): readonly Choice[] {
  useEffect(() => {
    if (asked) return;
    asked = true;
    ask('choices', {}).then((rows) => { choices.value = rows; }, (error: unknown) => {
      asked = false;
      sayError(error);
    });
  }, []);
  return choices.value;
}

/** What a choice is asked for by: employees by their code, others by their id. */
export function codeOf({ FKind, FID, FNumber }: Choice): string {
  return FKind === 'employee' ? FNumber : String(FID);
}
