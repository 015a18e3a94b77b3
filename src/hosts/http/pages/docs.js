// The page of the operations: it reads openapi.json, shows each operation, and calls it.
'use strict';

const kToken = 'tessarlorn-token';
const byId = (id) => document.getElementById(id);
let description;
let operations = [];
let chosenTag = '';
let running;

/** An element with properties and children; texts are never read as HTML. */
function make(name, properties, ...children) {
  const element = document.createElement(name);
  for (const [key, value] of Object.entries(properties || {})) {
    if (key in element) element[key] = value;
    else element.setAttribute(key, value);
  }
  element.append(...children.flat());
  return element;
}

const plain = (text) => (text || '').replace(/\\([\\`*[\]<])/g, '$1');

/** The schema, parameter or answer behind a reference. */
function resolve(part) {
  let found = part;
  while (found && found.$ref) {
    found = found.$ref.slice(2).split('/').reduce((at, name) => at[name], description);
  }
  return found || {};
}

const types = (schema) => [schema.type || 'any'].flat();
const has = (schema, type) => types(schema).includes(type);

function typeText(schema) {
  const known = resolve(schema);
  return types(known).filter((type) => type !== 'null').map((type) => (
    type === 'array' ? `list of ${typeText(known.items)}` : type)).join(' or ');
}

// Values -------------------------------------------------------------------------------------------------------------

/** Reads JSON. Numbers become texts behind \u0001, so that all their digits stay. */
function readExact(text) {
  return JSON.parse(text.replace(/"(?:[^"\\]|\\.)*"|-?\d[\d.eE+-]*/g, (token) => (
    token[0] === '"' ? token : `"\\u0001${token}"`)));
}
const isNumber = (value) => typeof value === 'string' && value[0] === '\u0001';
const pretty = (value) => JSON.stringify(value, null, 2).replace(/"\\u0001([^"]*)"/g, '$1');
function cellText(value) {
  if (value === null || value === undefined) return 'null';
  if (isNumber(value)) return value.slice(1);
  return typeof value === 'object' ? pretty(value) : String(value);
}

// The list -----------------------------------------------------------------------------------------------------------

function readOperations() {
  for (const [path, methods] of Object.entries(description.paths)) {
    const names = Object.keys(methods);
    const method = names.includes('post') ? 'post' : names[0];
    const operation = methods[method];
    const id = operation.operationId;
    operations.push({ id, path, method, methods: names, operation, text: `${id} ${operation.description || ''} ${operation.summary}`.toLowerCase() });
  }
  operations.sort((a, b) => a.id.localeCompare(b.id));
}

function showList() {
  const words = byId('search').value.toLowerCase().split(/\s+/);
  const shown = operations.filter((one) => (!chosenTag || one.operation.tags.includes(chosenTag))
    && words.every((word) => one.text.includes(word)));
  const current = decodeURIComponent(location.hash.slice(1));
  byId('operations').replaceChildren(...shown.map(({ id, operation }) => {
    const link = make('a', { href: `#${encodeURIComponent(id)}` }, id, make('small', {}, plain(operation.summary)));
    if (id === current) link.setAttribute('aria-current', 'page');
    return make('li', {}, link);
  }));
  if (!shown.length) byId('operations').append(make('li', { className: 'none' }, 'Nothing found'));
}

function showTags() {
  byId('tags').replaceChildren(...['', ...description.tags.map((tag) => tag.name)].map((tag) => make('button', {
    type: 'button',
    'aria-pressed': String(tag === chosenTag),
    onclick: () => { chosenTag = tag; showTags(); showList(); },
  }, tag || 'all')));
}

function openList(open) {
  byId('list').classList.toggle('open', open);
  byId('menu').setAttribute('aria-expanded', String(open));
}

// One operation ------------------------------------------------------------------------------------------------------

function table(heads, rows, className = 'about') {
  return make('div', { className: 'scroll', tabIndex: 0 }, make('table', { className },
    make('thead', {}, make('tr', {}, heads.map((head) => make('th', { scope: 'col' }, head)))),
    make('tbody', {}, rows)));
}

/** A row for each value of a schema, keys behind the name of what holds them. */
function valueRows(schema, owner, rows) {
  const known = resolve(schema);
  for (const [name, part] of Object.entries(known.properties || {})) {
    const value = resolve(part);
    const path = owner + name;
    const needed = (known.required || []).includes(name) ? 'needed' : '';
    rows.push(make('tr', {}, make('td', {}, make('code', {}, path)), make('td', {}, typeText(value)),
      make('td', {}, needed), make('td', {}, plain(value.description))));
    if (has(value, 'array')) valueRows(value.items, `${path}[].`, rows);
    else valueRows(value, `${path}.`, rows);
  }
  return rows;
}

function columnRows(schema) {
  return Object.entries(schema.properties || {}).map(([name, part]) => make('tr', {},
    make('td', {}, make('code', {}, name)), make('td', {}, typeText(part)), make('td', {}, plain(resolve(part).description))));
}

function answerSchema(operation) {
  const content = (operation.responses['200'] || {}).content || {};
  return content['application/json'] ? resolve(content['application/json'].schema) : {};
}

function columnsOf(operation) {
  const result = resolve((answerSchema(operation).properties || {}).result);
  if (result.properties && result.properties.rows) return resolve(result.properties.rows.items);
  return has(result, 'array') ? resolve(result.items) : result;
}

function bodySchema(operation) {
  return operation.requestBody ? resolve(operation.requestBody.content['application/json'].schema) : undefined;
}

function show() {
  const id = decodeURIComponent(location.hash.slice(1));
  const found = operations.find((one) => one.id === id) || operations[0];
  if (running) running.abort();
  const { path, method, methods, operation } = found;
  const body = bodySchema(operation);
  const parts = [
    make('h1', {}, found.id),
    make('p', { className: 'path' }, methods.map((name) => make('b', {}, name.toUpperCase())), make('code', {}, path)),
    make('p', {}, plain(operation.description || operation.summary)),
  ];
  if (body) {
    const rows = valueRows(body, '', []);
    parts.push(make('h2', {}, 'Arguments'), table(['name', 'type', '', 'meaning'], rows));
  }
  const columns = columnRows(columnsOf(operation));
  if (columns.length) parts.push(make('h2', {}, 'Answer'), table(['column', 'type', 'meaning'], columns));
  const errors = Object.entries(operation.responses).filter(([status]) => status >= '400').map(([status, answer]) => (
    make('tr', {}, make('td', {}, status), make('td', {}, resolve(answer).description))));
  parts.push(make('h2', {}, 'Try it'), tryForm(path, method, operation, body));
  if (errors.length) {
    parts.push(make('details', {}, make('summary', {}, 'Errors'), table(['status', 'when'], errors)));
  }
  byId('operation').replaceChildren(...parts);
  byId('title').textContent = description.info.title;
  document.title = `${found.id} – ${description.info.title}`;
  openList(false);
  showList();
  scrollTo(0, 0);
}

// The form -----------------------------------------------------------------------------------------------------------

/** A field for one value. `read` answers what it holds, undefined for nothing. */
function valueField(name, schema, needed) {
  const known = resolve(schema);
  const title = plain(known.description);
  const label = make('span', { className: needed ? 'needed' : '' }, name);
  if (has(known, 'array') || (has(known, 'object') && !known.properties)) {
    const sample = has(known, 'array') ? [sampleOf(known.items)] : {};
    const text = needed ? JSON.stringify(sample, null, 2) : '';
    const input = make('textarea', { rows: Math.min(text.split('\n').length + 2, 16), spellcheck: false, title, value: text });
    return { element: make('label', { className: 'wide' }, label, ' ', input), read: () => (input.value.trim() ? JSON.parse(input.value) : undefined) };
  }
  if (has(known, 'boolean') || known.enum) {
    const input = make('select', { title }, ['', ...(known.enum || ['true', 'false'])].map((text) => make('option', {}, text)));
    return {
      element: make('label', {}, label, input),
      read: () => (input.value === '' ? undefined : has(known, 'boolean') ? input.value === 'true' : input.value),
    };
  }
  const isPlainNumber = has(known, 'integer') || has(known, 'number');
  const input = make('input', {
    title, spellcheck: false, autocomplete: 'off', placeholder: placeholderOf(known), inputMode: isPlainNumber && !has(known, 'string') ? 'decimal' : 'text',
  });
  if (known.format === 'password') input.type = 'password';
  return {
    element: make('label', {}, label, input),
    read: () => {
      const text = input.value.trim();
      if (text === '') return undefined;
      return isPlainNumber && !has(known, 'string') && /^-?\d+(\.\d+)?$/.test(text) ? Number(text) : input.value;
    },
  };
}

function placeholderOf(schema) {
  if (schema.default !== undefined) return String(schema.default);
  if ((schema.pattern || '').startsWith('^\\d{4}-')) return '2024-05-06 07:08:09';
  if (has(schema, 'string') && has(schema, 'integer')) return '1,2';
  return '';
}

/** An object with what it needs, for a list that is written as JSON. */
function sampleOf(schema) {
  const known = resolve(schema);
  const sample = {};
  for (const [name, part] of Object.entries(known.properties || {})) {
    const value = resolve(part);
    sample[name] = has(value, 'integer') || has(value, 'number') ? 1 : has(value, 'boolean') ? true : '';
  }
  return sample;
}

/** Fields for an object: its values, and a group for each object in it. */
function objectFields(schema, title) {
  const readers = [];
  const fields = [];
  const groups = [];
  for (const [name, part] of Object.entries(schema.properties || {})) {
    const known = resolve(part);
    const needed = (schema.required || []).includes(name);
    if (has(known, 'object') && known.properties) {
      const inner = objectFields(known, name);
      groups.push(...inner.elements);
      readers.push([name, () => {
        const value = inner.read();
        return Object.keys(value).length || needed ? value : undefined;
      }]);
    } else {
      const field = valueField(name, part, needed);
      fields.push(field.element);
      readers.push([name, field.read]);
    }
  }
  const elements = fields.length
    ? [make('fieldset', {}, make('legend', {}, title), make('div', { className: 'fields' }, fields)), ...groups] : groups;
  return {
    elements,
    read: () => Object.fromEntries(readers.map(([name, read]) => [name, read()]).filter(([, value]) => value !== undefined)),
  };
}

const quoted = (text) => `'${text.replaceAll("'", "'\\''")}'`;

function curlText(request) {
  const words = ['curl', quoted(location.origin + request.url)];
  if (request.method !== 'GET') words.splice(1, 0, '-X', request.method);
  for (const [name, value] of Object.entries(request.headers)) {
    if (name !== 'Authorization') words.push('\\\n  -H', quoted(`${name}: ${value}`));
  }
  if (!request.open) words.push('\\\n  -H', '"Authorization: Bearer $TOKEN"');
  if (request.body !== undefined) words.push('\\\n  -d', quoted(request.body));
  return words.join(' ').replace(/ \\\n/g, ' \\\n');
}

function tryForm(path, method, operation, body) {
  const values = body ? objectFields(body, 'Arguments') : { elements: [], read: () => ({}) };
  const options = (operation.parameters || []).map(resolve).map((parameter) => ({
    parameter, ...valueField(parameter.name, { ...resolve(parameter.schema), description: parameter.description }, false),
  }));
  const newKey = make('button', { type: 'button' }, 'New Idempotency-Key');
  const format = make('select', {}, Object.keys((operation.responses['200'] || {}).content || {}).map((type) => make('option', {}, type)));
  const send = make('button', { className: 'main' }, 'Send');
  const stop = make('button', { type: 'button', hidden: true, onclick: () => running.abort() }, 'Stop');
  const curl = make('pre', { className: 'wrap' });
  const answer = make('div', { 'aria-live': 'polite' });
  const read = () => {
    const request = { method: method.toUpperCase(), headers: {}, open: (operation.security || [1]).length === 0 };
    const query = new URLSearchParams();
    for (const { parameter, read: value } of options) {
      if (value() === undefined) continue;
      if (parameter.in === 'header') request.headers[parameter.name] = value();
      else query.set(parameter.name, value());
    }
    request.url = path + (query.size ? `?${query}` : '');
    if (format.options.length > 1 && format.selectedIndex > 0) request.headers.Accept = format.value;
    if (body) {
      request.headers['Content-Type'] = 'application/json';
      request.body = JSON.stringify(values.read());
    }
    const token = sessionStorage.getItem(kToken);
    if (token && !request.open) request.headers.Authorization = `Bearer ${token}`;
    return request;
  };
  const update = () => {
    try {
      curl.textContent = curlText(read());
    } catch (error) {
      curl.textContent = error.message;
    }
  };
  const optionFields = options.map((option) => option.element);
  if (format.options.length > 1) optionFields.push(make('label', {}, 'Answer as', format));
  const form = make('form', { oninput: update }, values.elements);
  if (optionFields.length) {
    const fields = make('div', { className: 'fields' }, optionFields);
    const group = make('fieldset', {}, make('legend', {}, 'Options'), fields);
    if (options.some(({ parameter }) => parameter.name === 'Idempotency-Key')) group.append(make('p', {}, newKey));
    form.append(group);
  }
  newKey.onclick = () => {
    const key = options.find(({ parameter }) => parameter.name === 'Idempotency-Key');
    const random = crypto.getRandomValues(new Uint8Array(16));
    key.element.querySelector('input').value = [...random].map((byte) => byte.toString(16).padStart(2, '0')).join('');
    update();
  };
  form.append(make('div', { className: 'send' }, send, stop), make('details', { open: true }, make('summary', {}, 'The same with curl'), curl), answer);
  form.onsubmit = async (event) => {
    event.preventDefault();
    send.disabled = true;
    stop.hidden = false;
    running = new AbortController();
    try {
      await call(read(), answer, running.signal);
      if (path.endsWith('/login') || path.endsWith('/logout')) await showCaller();
    } catch (error) {
      answer.replaceChildren(make('p', { className: 'status bad' }, error.name === 'AbortError' ? 'Stopped' : error.message));
    }
    send.disabled = false;
    stop.hidden = true;
  };
  update();
  return form;
}

// Calls --------------------------------------------------------------------------------------------------------------

async function call(request, answer, signal) {
  answer.replaceChildren(make('p', {}, 'Waiting…'));
  const begun = performance.now();
  const response = await fetch(request.url, {
    method: request.method, headers: request.headers, body: request.body, credentials: 'same-origin', signal,
  });
  const type = response.headers.get('Content-Type') || '';
  if (type.startsWith('text/event-stream')) {
    await showStream(response, answer);
    return;
  }
  const text = await response.text();
  const time = Math.round(performance.now() - begun);
  const headers = [...response.headers].map(([name, value]) => `${name}: ${value}`).join('\n');
  answer.replaceChildren(
    make('p', { className: `status ${response.ok ? 'good' : 'bad'}` }, `${response.status} ${response.statusText} · ${time} ms · ${text.length} characters`),
    make('details', {}, make('summary', {}, 'Headers'), make('pre', {}, headers)),
    ...bodyParts(type, text));
}

async function showStream(response, answer) {
  const shown = make('pre', { className: 'wrap' });
  answer.replaceChildren(make('p', { className: 'status good' }, `${response.status} · listening`), shown);
  const reader = response.body.pipeThrough(new TextDecoderStream()).getReader();
  for (let part = await reader.read(); !part.done; part = await reader.read()) shown.append(part.value);
}

function bodyParts(type, text) {
  if (!text) return [];
  if (!/json(;|$)/.test(type) || type.includes('ndjson')) return [make('pre', {}, text)];
  const json = readExact(text);
  const source = make('pre', {}, pretty(json));
  const result = json.result;
  if (!result || !result.rows) return [source];
  const kMostShown = 500;
  const rows = result.rows.slice(0, kMostShown).map((row) => make('tr', {}, result.fields.map(({ name }) => {
    const value = row[name];
    return make('td', { className: value === null ? 'null' : isNumber(value) ? 'number' : '', title: cellText(value) }, cellText(value));
  })));
  const count = result.rows.length;
  const note = `${count} row${count === 1 ? '' : 's'}${count > kMostShown ? `, the first ${kMostShown} are shown` : ''}`;
  const grid = table(result.fields.map(({ name }) => name), rows, 'rows');
  source.hidden = true;
  const button = (name, is) => make('button', {
    type: 'button', 'aria-pressed': String(is),
    onclick: (event) => {
      source.hidden = name === 'Table';
      grid.hidden = name !== 'Table';
      for (const other of event.target.parentNode.children) other.setAttribute('aria-pressed', String(other === event.target));
    },
  }, name);
  return [make('div', { className: 'tabs' }, button('Table', true), button('JSON', false)), make('p', {}, note), grid, source];
}

// Who is calling -----------------------------------------------------------------------------------------------------

async function showCaller(note) {
  const token = sessionStorage.getItem(kToken);
  const response = await fetch('me', { headers: token ? { Authorization: `Bearer ${token}` } : {} });
  const caller = response.ok ? await response.json() : undefined;
  byId('who').textContent = caller ? `${caller.user} · ${caller.role}` : 'Not logged in';
  if (note && caller) byId('access').open = false;
  byId('access-note').textContent = caller ? '' : note ? 'That did not work.' : 'A token is kept until this tab is closed.';
}

function setUpAccess() {
  byId('login').onsubmit = async (event) => {
    event.preventDefault();
    const form = event.target;
    sessionStorage.removeItem(kToken);
    const response = await fetch('login', {
      method: 'POST', headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify({ user: form.user.value, password: form.password.value }),
    });
    form.password.value = '';
    await showCaller(true);
    if (!response.ok) byId('access-note').textContent = (await response.json()).detail;
  };
  byId('token').onsubmit = async (event) => {
    event.preventDefault();
    const field = event.target.elements.token;
    sessionStorage.setItem(kToken, field.value.trim());
    field.value = '';
    await showCaller(true);
  };
  byId('logout').onclick = async () => {
    if (sessionStorage.getItem(kToken)) sessionStorage.removeItem(kToken);
    else await fetch('logout', { method: 'POST' });
    await showCaller();
  };
}

async function start() {
  setUpAccess();
  byId('menu').onclick = () => openList(!byId('list').classList.contains('open'));
  byId('search').oninput = showList;
  document.addEventListener('keydown', (event) => {
    const typing = /^(INPUT|TEXTAREA|SELECT)$/.test(event.target.tagName);
    if (event.key === '/' && !typing) {
      event.preventDefault();
      openList(true);
      byId('search').focus();
    }
    if (event.key === 'Escape') byId('access').open = false;
  });
  description = await (await fetch('openapi.json')).json();
  readOperations();
  showTags();
  show();
  addEventListener('hashchange', () => { show(); byId('operation').focus({ preventScroll: true }); });
  await showCaller();
}

start().catch((error) => byId('operation').replaceChildren(make('p', { className: 'status bad' }, `The page did not load: ${error.message}`)));
