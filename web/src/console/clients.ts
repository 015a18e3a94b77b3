// The same call from elsewhere: by curl, by the command, and by a script of automation.
import { formatOf, formats, queryOf, type Options } from './call.js';
import type { Operation } from './document.js';
import type { Body } from './form.js';

export interface Called {
  readonly operation: Operation;
  readonly body: Body;
  readonly options: Options;
  readonly idempotencyKey: string | undefined;
}

// For a shell ---------------------------------------------------------------------------------------------------------

/** A word of bash, whatever stands in it. */
export function shellWord(text: string): string {
  return /^[\w./:,=@-]+$/.test(text) ? text : `'${text.replaceAll("'", "'\\''")}'`;
}

const continued = (parts: readonly string[]) => parts.join(' \\\n  ');

export function curlOf({ operation, body, options, idempotencyKey }: Called): string {
  const query = new URLSearchParams(queryOf(operation, options)).toString();
  const format = formatOf(options);
  return continued([
    'curl -X POST -H "Authorization: Bearer $TOKEN"',
    ...(idempotencyKey ? [`-H ${shellWord(`Idempotency-Key: ${idempotencyKey}`)}`] : []),
    ...(format === 'json' ? [] : [`-H ${shellWord(`Accept: ${formats[format]}`)}`]),
    ...(operation.arguments.length
      ? ["-H 'Content-Type: application/json'", `-d ${shellWord(JSON.stringify(body))}`] : []),
    shellWord(`${location.origin}/api/v1/${operation.path}${query ? `?${query}` : ''}`),
  ]);
}

/** Dictionaries in Dictionaries, and Vectors, are written as JSON. */
const commandValue = (value: unknown) => (typeof value === 'object' ? JSON.stringify(value) : String(value));

function commandWords(name: string, value: unknown): string[] {
  const keys = typeof value === 'object' && value !== null && !Array.isArray(value) ? Object.entries(value) : undefined;
  // An empty Dictionary is not Nothing.
  if (!keys?.length) return [`${name}=${commandValue(value)}`];
  return keys.map(([key, part]) => `${name}.${key}=${commandValue(part)}`);
}

export function commandOf({ operation, body, options }: Called): string {
  const format = formatOf(options);
  return continued([
    `tessarlorn call ${operation.className}.${operation.name}`,
    ...Object.entries(body).flatMap(([name, value]) => commandWords(name, value)).map(shellWord),
    ...(options.dryRun ? ['--dry-run'] : []),
    ...(options.each && operation.each ? ['--each-order'] : []),
    ...(options.columns && operation.columns ? [`--columns ${shellWord(options.columns)}`] : []),
    ...(format === 'csv' ? ['--csv'] : format === 'ndjson' ? ['--json'] : []),
  ]);
}

// For automation ------------------------------------------------------------------------------------------------------

/** Operations that work on the connection that an earlier one of the same object opened. */
const onOpenSession = new Set(['TransMode', 'WriteSaveOrderLog', 'WriteOPLog', 'IsLogEnable']);
/** Operations that spell the key of their connection string in a way of their own. */
const connectionKeys: Readonly<Record<string, string>> = {
  MarkPickingGoodsStatus: 'sDsn', ClearPickingGoodsStatus: 'sDsn', SavePickingGoods: 'sProps',
};
const usualConnectionKey = 'sDSN';
/** Takes its connection string before a Dictionary that would hold it elsewhere. */
const connectionFirst = 'UpdateLogisticsWeightStatus';

/** The Dictionary that holds the connection string; none where it is an argument of its own. */
function holderOf({ name, arguments: all }: Operation): string | undefined {
  if (name === connectionFirst) return undefined;
  return all.find((argument) => argument.dictionary && /^dctParam?$/.test(argument.name))?.name;
}

function scriptText(text: string): string {
  return text.split(/\r\n|\r|\n/).map((line) => `"${line.replaceAll('"', '""')}"`).join(' & vbCrLf & ');
}

function scriptValue(value: unknown): string {
  if (typeof value === 'boolean') return value ? 'True' : 'False';
  return typeof value === 'number' ? String(value) : scriptText(String(value ?? ''));
}

const isObject = (value: unknown): value is object => typeof value === 'object' && value !== null;

/** The lines that make a Dictionary or Vector. @param names takes the variables that they need */
function scriptObject(name: string, value: object, names: string[]): string[] {
  names.push(name);
  const list = Array.isArray(value);
  const lines = [`Set ${name} = CreateObject("Mirel.${list ? 'Vector' : 'Dictionary'}")`];
  for (const [key, part] of Object.entries(value)) {
    const place = list ? `${name}.Add ` : `${name}(${scriptText(key)}) = `;
    if (isObject(part)) {
      const inner = `${name}_${Number(key) + 1 || key}`;
      lines.push(...scriptObject(inner, part, names), list ? `${place}${inner}` : `Set ${place}${inner}`);
    } else {
      lines.push(place + scriptValue(part));
    }
  }
  return lines;
}

export function scriptOf({ operation, body }: Called): string {
  const { className, name, answersObject } = operation;
  const holder = holderOf(operation);
  const session = onOpenSession.has(name);
  const names = ['component', 'answer'];
  const lines: string[] = [];
  const passed = session || holder ? [] : ['dsn'];
  for (const argument of operation.arguments) {
    const value = body[argument.name];
    if (value === undefined && !argument.needed && !argument.writtenBack) {
      // Only at the end of the list an argument can be left out; a Dictionary or Vector that is not given is Nothing.
      if (argument.fields.some(({ kind }) => kind === 'list' || kind === 'entries')) passed.push('Nothing');
      continue;
    }
    if (isObject(value)) lines.push(...scriptObject(argument.name, value, names));
    if (argument.name === holder) lines.push(`${holder}("${connectionKeys[name] ?? usualConnectionKey}") = dsn`);
    if (argument.writtenBack) {
      names.push(argument.name);
      lines.push(`${argument.name} = ${scriptValue(value)}`);
    }
    passed.push(isObject(value) || argument.writtenBack ? argument.name : scriptValue(value));
  }
  const call = `component.${name}${passed.length ? `(${passed.join(', ')})` : ''}`;
  const shown = operation.arguments.filter(({ writtenBack }) => writtenBack).map((one) => `WScript.Echo ${one.name}`);
  return [
    'Option Explicit',
    `Dim ${names.join(', ')}`,
    ...(session ? [] : ['Const dsn = "Connect={Embedded=C:\\shop\\orders.db};User=16394;Language=CHS;Escape=Yes"']),
    `Set component = CreateObject("TessarLornPickingAndDelivery.${className}")`,
    ...lines,
    ...(answersObject ? [`Set answer = ${call}`] : [`answer = ${call}`, 'WScript.Echo answer']),
    ...(operation.columns ? rowsShown : []),
    ...shown,
  ].join('\r\n');
}

const rowsShown = [
  'If Not answer Is Nothing Then',
  '    Do Until answer.EOF',
  '        WScript.Echo answer(0)',
  '        answer.MoveNext',
  '    Loop',
  'End If',
];
