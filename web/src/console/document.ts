// The operations, as the server describes them.
import { answerOf, door } from '../api/door.js';

interface Schema {
  readonly $ref?: string;
  readonly type?: string | readonly string[];
  readonly properties?: Readonly<Record<string, Schema>>;
  readonly items?: Schema;
  readonly required?: readonly string[];
  readonly pattern?: string;
  readonly description?: string;
  readonly default?: unknown;
}

interface Described {
  readonly operationId: string;
  readonly summary: string;
  readonly description?: string;
  readonly parameters?: readonly { readonly $ref?: string }[];
  readonly requestBody?: { readonly content: { readonly 'application/json': { schema: Schema; example?: unknown } } };
  readonly responses: { readonly 200: { content?: { 'application/json'?: { schema: Schema } } } };
}

interface Document {
  readonly paths: Readonly<Record<string, { readonly post?: Described }>>;
  readonly components: { readonly schemas: Readonly<Record<string, Schema>> };
}

export type Kind = 'text' | 'keys' | 'whole' | 'decimal' | 'yesNo' | 'date' | 'list' | 'entries';

/** An argument that is a plain value, or a key of one that is a Dictionary. */
export interface Field {
  /** As dctPara.FID. */
  readonly path: string;
  readonly kind: Kind;
  readonly needed: boolean;
  readonly help: string;
  readonly fallback: string;
  /** The keys of each Dictionary of a list. */
  readonly keys: readonly Field[];
}

export interface Argument {
  readonly name: string;
  /** Whether it is a Dictionary with keys of its own. */
  readonly dictionary: boolean;
  readonly needed: boolean;
  readonly writtenBack: boolean;
  readonly fields: readonly Field[];
}

export interface Operation {
  /** As clsSaveData/Delivery. */
  readonly path: string;
  readonly className: string;
  readonly name: string;
  readonly summary: string;
  readonly help: string;
  readonly writes: boolean;
  readonly each: boolean;
  /** Whether it answers a recordset, whose columns can be chosen. */
  readonly columns: boolean;
  /** Whether it answers an object of automation. */
  readonly answersObject: boolean;
  readonly administrators: boolean;
  readonly arguments: readonly Argument[];
  readonly example: unknown;
}

/** Operations that none of the other roles of the server has. */
const forAdministrators = new Set([
  'WriteSaveOrderLog', 'WriteOPLog', 'IsLogEnable', 'SubMitPorTask', 'ExecuteSQL', 'GetUploadDataByTab',
]);

const prefix = '/api/v1/';
const writtenBack = 'Written back after the call';

/** The document's texts are Markdown. */
const plain = (text = '') => text.replace(/\\([\\`*[\]<_])/g, '$1').replace(/^; /, '');

const typesOf = ({ type = 'string' }: Schema) => (typeof type === 'string' ? [type] : type);

function kindOf(schema: Schema): Kind {
  const types = typesOf(schema);
  if (types.includes('array')) return 'list';
  if (types.includes('object')) return 'entries';
  if (schema.pattern?.startsWith('^\\d{4}-')) return 'date';
  if (types.includes('string')) return types.includes('integer') ? 'keys' : 'text';
  if (types.includes('boolean')) return 'yesNo';
  return types.includes('integer') ? 'whole' : 'decimal';
}

function fieldOf(path: string, schema: Schema, needed: boolean): Field {
  return {
    path, needed, kind: kindOf(schema), help: plain(schema.description),
    fallback: schema.default === undefined ? '' : String(schema.default),
    keys: schema.items ? fieldsOf('', schema.items) : [],
  };
}

function fieldsOf(owner: string, { properties = {}, required = [] }: Schema): Field[] {
  return Object.entries(properties).map(([name, schema]) => (
    fieldOf(owner + name, schema, required.includes(name))));
}

function argumentOf(name: string, schema: Schema, needed: boolean): Argument {
  const dictionary = schema.properties !== undefined;
  return {
    name, dictionary, needed, writtenBack: schema.description?.startsWith(writtenBack) ?? false,
    fields: dictionary ? fieldsOf(`${name}.`, schema) : [fieldOf(name, schema, needed)],
  };
}

function operationOf(path: string, described: Described, { components }: Document): Operation {
  const [className = '', name = ''] = path.split('/');
  const schemaOf = (schema: Schema = {}): Schema => (
    schema.$ref ? components.schemas[schema.$ref.split('/').pop()!] ?? {} : schema);
  const body = described.requestBody?.content['application/json'];
  const { properties = {}, required = [] } = schemaOf(body?.schema);
  const answer = schemaOf(described.responses[200].content?.['application/json']?.schema).properties?.['result'] ?? {};
  const has = (parameter: string) => described.parameters?.some(({ $ref }) => $ref?.endsWith(`/${parameter}`)) ?? false;
  return {
    path, className, name, summary: plain(described.summary), help: plain(described.description),
    writes: className === 'clsSaveData' && name !== 'TransMode', each: has('Each'), columns: has('Columns'),
    answersObject: typesOf(answer).some((type) => type === 'object' || type === 'array'),
    administrators: forAdministrators.has(name), example: body?.example,
    arguments: Object.entries(properties).map(([argument, schema]) => (
      argumentOf(argument, schema, required.includes(argument)))),
  };
}

export async function askOperations(): Promise<Operation[]> {
  // The document is not among the paths that it describes.
  const get = door.GET as unknown as (path: string) => Promise<{
    data?: Document;
    error?: unknown;
    response: Response;
  }>;
  const document = await answerOf(get('/api/v1/openapi.json'));
  return Object.entries(document.paths).flatMap(([path, { post }]) => (
    post && path.startsWith(`${prefix}cls`) ? [operationOf(path.slice(prefix.length), post, document)] : []));
}
