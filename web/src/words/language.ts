// The language of the page, and texts in the three that it speaks.
import { signal } from '@preact/signals';

export const languages = ['en', 'zh-Hans', 'zh-Hant'] as const;
export type Language = (typeof languages)[number];

export const languageNames: Record<Language, string> = { en: 'English', 'zh-Hans': '简体中文', 'zh-Hant': '繁體中文' };

/** A text in English, Simplified and Traditional Chinese. */
export type Text = readonly [english: string, simplified: string, traditional: string];

const kept = 'tessarlorn.language';

function firstLanguage(): Language {
  const chosen = localStorage.getItem(kept);
  const found = languages.find((language) => language === chosen);
  if (found) return found;
  for (const wanted of navigator.languages) {
    if (/^zh\b.*(hant|tw|hk|mo)/i.test(wanted)) return 'zh-Hant';
    if (/^zh\b/i.test(wanted)) return 'zh-Hans';
    if (/^en\b/i.test(wanted)) return 'en';
  }
  return 'en';
}

export const language = signal<Language>(firstLanguage());

export function setLanguage(wanted: Language): void {
  language.value = wanted;
  localStorage.setItem(kept, wanted);
}

/** The language that a caller's ERP code stands for, unless one was chosen here. */
export function followCaller(code: string): void {
  if (localStorage.getItem(kept)) return;
  language.value = code === 'CHS' ? 'zh-Hans' : code === 'CHT' ? 'zh-Hant' : 'en';
}

/** All texts of the page, for the test that none is missing. */
export const allWords: Record<string, Text>[] = [];

/** Texts by name, each read in the language of the moment: `words.title`. */
export function defineWords<T extends Record<string, Text>>(texts: T): { readonly [Name in keyof T]: string } {
  allWords.push(texts);
  return new Proxy(texts, {
    get: (all, name) => all[name as keyof T]?.[languages.indexOf(language.value)],
  }) as unknown as { readonly [Name in keyof T]: string };
}

/** `fill(words.left, { count: 7 })`: "{count} {count|order|orders} left" is "7 orders left". */
export function fill(text: string, values: Record<string, string | number>): string {
  return text.replace(/\{(\w+)(?:\|([^|}]*)\|([^}]*))?\}/g, (whole, name: string, one?: string, many?: string) => {
    const value = values[name];
    if (value === undefined) return whole;
    if (one !== undefined && many !== undefined) return value === 1 ? one : many;
    return typeof value === 'number' ? formatNumber(value) : value;
  });
}

/** How people here write times and numbers: the browser's own form of the language, where it has one. */
export function locale(): string {
  return navigator.languages.find((known) => known.split('-')[0] === language.value.split('-')[0]) ?? language.value;
}

/** Kept, as it takes longer to make one than to write a hundred values with it. */
function remembered<Options, Form>(make: (place: string, options: Options) => Form): (options: Options) => Form {
  const made = new Map<string, Form>();
  return (options) => {
    const place = locale();
    const key = place + JSON.stringify(options);
    const form = made.get(key) ?? make(place, options);
    made.set(key, form);
    return form;
  };
}
const numberForm = remembered((place, options: Intl.NumberFormatOptions) => new Intl.NumberFormat(place, options));
export const dateForm = remembered(
  (place, options: Intl.DateTimeFormatOptions) => new Intl.DateTimeFormat(place, options));

export function formatNumber(value: number, digits?: number): string {
  return numberForm(digits === undefined ? {} : { minimumFractionDigits: digits, maximumFractionDigits: digits })
    .format(value);
}

/** A date of the database, as "2026-11-22T13:45:01", as people here write it. "" for none. */
export function formatTime(value: string | null | undefined, style: 'date' | 'both' = 'both'): string {
  if (!value) return '';
  const time = new Date(value.includes('T') ? value : value.replace(' ', 'T'));
  if (Number.isNaN(time.getTime())) return value;
  return dateForm(style === 'both' ? { dateStyle: 'short', timeStyle: 'short' } : { dateStyle: 'short' }).format(time);
}
