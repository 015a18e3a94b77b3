// Light or dark, as the system or as chosen on this machine.
import { signal } from '@preact/signals';

export const themes = ['system', 'light', 'dark'] as const;
export type Theme = (typeof themes)[number];

const kept = 'tessarlorn.theme';
export const theme = signal<Theme>(themes.find((known) => known === localStorage.getItem(kept)) ?? 'system');

export function setTheme(wanted: Theme): void {
  theme.value = wanted;
  localStorage.setItem(kept, wanted);
  show();
}

function show(): void {
  if (theme.value === 'system') delete document.documentElement.dataset['theme'];
  else document.documentElement.dataset['theme'] = theme.value;
}
show();
