// What is typed into an operation's form, and the body of the call that it makes.
import type { Field, Operation } from './document.js';
import { words } from './words.js';

/** What is typed, by the path of the field. */
export type Values = Readonly<Record<string, string>>;
export type Body = Record<string, unknown>;

export function allFields(operation: Operation): Field[] {
  return operation.arguments.flatMap(({ fields }) => fields);
}

const isDictionary = (value: unknown) => typeof value === 'object' && value !== null && !Array.isArray(value);

/** What is wrong with the JSON of a field, in words; "" for none. */
export function wrongIn(field: Field, text = ''): string {
  if ((field.kind !== 'list' && field.kind !== 'entries') || !text.trim()) return '';
  let value: unknown;
  try {
    value = JSON.parse(text);
  } catch (error) {
    return `${words.noJson} ${error instanceof Error ? error.message : ''}`;
  }
  if (field.kind === 'entries') return isDictionary(value) ? '' : words.noDictionary;
  return Array.isArray(value) && value.every(isDictionary) ? '' : words.noList;
}

function valueOf({ kind }: Field, text: string): unknown {
  switch (kind) {
    case 'whole':
    case 'decimal': return Number(text);
    case 'yesNo': return text === 'true';
    case 'list':
    case 'entries': return JSON.parse(text);
    default: return text;
  }
}

/** A needed text may be empty; every other empty field is left out. */
const isSent = ({ kind, needed }: Field, text: string) => text !== '' || (needed && kind === 'text');

/** The body of the call. The JSON of its fields has to be right. */
export function bodyOf(operation: Operation, values: Values): Body {
  const body: Body = {};
  for (const { name, dictionary, fields } of operation.arguments) {
    const sent = fields.filter((field) => isSent(field, values[field.path] ?? ''));
    const entries = sent.map((field) => (
      [field.path.slice(name.length + 1), valueOf(field, values[field.path] ?? '')] as const));
    if (dictionary) body[name] = Object.fromEntries(entries);
    else if (entries[0]) body[name] = entries[0][1];
  }
  return body;
}

/** A value of the kind that one sees, for a field of which no example is known. */
function sampleOf({ kind, fallback, keys }: Field): unknown {
  if (fallback && kind === 'text') return fallback;
  switch (kind) {
    case 'keys': return '1,2';
    case 'whole': return Number(fallback) || 1;
    case 'decimal': return Number(fallback) || 1.25;
    case 'yesNo': return fallback === 'true';
    case 'date': return `${new Date().getFullYear()}-01-01T00:00`;
    case 'list': return [Object.fromEntries(keys.map((key) => [key.path, sampleOf(key)]))];
    case 'entries': return { 1: 'A1' };
    default: return 'A1';
  }
}

const written = (value: unknown) => (
  typeof value === 'object' && value !== null ? JSON.stringify(value, null, 2) : String(value ?? ''));

/** The example of the description; where it has none, one that is made from what is needed. */
export function exampleOf(operation: Operation): Values {
  const example = operation.example as Record<string, Record<string, unknown>> | undefined;
  const fields = allFields(operation);
  const told = (field: Field): unknown => {
    const [argument = '', key] = field.path.split('.', 2);
    const value = example?.[argument];
    return key === undefined ? value : value?.[key];
  };
  const values = fields.flatMap((field): [string, string][] => {
    const value = example ? told(field) : field.needed ? sampleOf(field) : undefined;
    return value === undefined ? [] : [[field.path, written(value)]];
  });
  return Object.fromEntries(values);
}

/** What a link says of the fields. A day alone is its beginning, as the field for times wants one. */
export function valuesFrom(operation: Operation, query: URLSearchParams): Values {
  const values = allFields(operation).flatMap(({ path, kind }): [string, string][] => {
    const text = query.get(path);
    if (text === null) return [];
    return [[path, kind === 'date' && /^\d{4}-\d\d-\d\d$/.test(text) ? `${text}T00:00` : text]];
  });
  return Object.fromEntries(values);
}
