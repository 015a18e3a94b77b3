// Uses a served database as an application would: node client.js PORT USER PASSWORD. Prints a line for each thing tried.
'use strict';
const { Connection, Request, TYPES } = require('tedious');

const [port, user, password, encrypt] = process.argv.slice(2);
const config = {
  server: '127.0.0.1',
  authentication: { type: 'default', options: { userName: user, password } },
  options: {
    port: Number(port), database: 'main', encrypt: encrypt === 'encrypt', trustServerCertificate: true,
    useColumnNames: false, rowCollectionOnRequestCompletion: true, useUTC: true, requestTimeout: 20000,
  },
};

/** Connects, or fails with the server's error. */
function connect(overrides = {}) {
  return new Promise((resolve, reject) => {
    const connection = new Connection({ ...config, ...overrides });
    connection.connect((error) => (error ? reject(error) : resolve(connection)));
  });
}

/** Runs a request: how is 'execSql', 'execSqlBatch' or 'callProcedure'. Answers rows and output values. */
function run(connection, text, parameters = [], how = 'execSql') {
  return new Promise((resolve, reject) => {
    const outputs = {};
    const request = new Request(text, (error, count, rows) => {
      if (error) return reject(error);
      return resolve({ count, outputs, rows: rows.map((row) => row.map((cell) => cell.value)), columns: rows.length ? rows[0].map((cell) => cell.metadata) : [] });
    });
    for (const [name, type, value, options] of parameters) {
      if (options && options.output) request.addOutputParameter(name, type, value, options);
      else request.addParameter(name, type, value, options);
    }
    request.on('returnValue', (name, value) => { outputs[name] = value; });
    connection[how](request);
  });
}

function promised(call) {
  return new Promise((resolve, reject) => call((error, value) => (error ? reject(error) : resolve(value))));
}

function show(name, value) {
  console.log(`${name}: ${JSON.stringify(value, (key, item) => (item && item.type === 'Buffer' ? Buffer.from(item.data).toString('hex') : item))}`);
}

async function main() {
  const connection = await connect();
  show('orders', (await run(connection, 'select count(*) from IC_Web2ERPOrders')).rows);
  const typed = await run(connection, "select cast(7 as int) i, cast(1.25 as decimal(10,3)) d, N'中😀' t, cast(null as date) n, cast('2024-02-29T12:34:56.500' as datetime) w", [], 'execSqlBatch');
  show('types', typed.columns.map((column) => [column.colName, column.type.name, column.dataLength ?? null, column.precision ?? null, column.scale ?? null]));
  show('values', typed.rows);
  const parameters = await run(connection, 'select @i, @b, @f, @n, @t, @l, @y, @g, @w, @o', [
    ['i', TYPES.Int, -42], ['b', TYPES.BigInt, '9007199254740993'], ['f', TYPES.Float, 0.1],
    ['n', TYPES.Numeric, 12345.678, { precision: 20, scale: 3 }], ['t', TYPES.NVarChar, "it's 中😀"],
    ['l', TYPES.NVarChar, 'x'.repeat(5000), { length: Infinity }], ['y', TYPES.VarBinary, Buffer.from([0, 1, 255])],
    ['g', TYPES.UniqueIdentifier, '6F9619FF-8B86-D011-B42D-00C04FC964FF'],
    ['w', TYPES.DateTime2, new Date('2024-02-29T12:34:56.789Z'), { scale: 3 }], ['o', TYPES.VarChar, null]]);
  parameters.rows[0][5] = parameters.rows[0][5].length;
  show('parameters', parameters.rows);
  await run(connection, "create procedure pr_double @n int, @twice int output as begin set @twice = @n * 2; select @n as n; return 5 end", [], 'execSqlBatch');
  const called = await run(connection, 'pr_double', [['n', TYPES.Int, 21], ['twice', TYPES.Int, 0, { output: true }]], 'callProcedure');
  show('procedure', [called.rows, called.outputs]);
  await run(connection, 'drop procedure pr_double', [], 'execSqlBatch');

  const prepared = new Request('select @a + 1', () => {});
  prepared.addParameter('a', TYPES.Int);
  await new Promise((resolve, reject) => { prepared.on('prepared', resolve); prepared.on('error', reject); connection.prepare(prepared); });
  const sums = [];
  for (const a of [1, 41]) {
    prepared.removeAllListeners('row');
    await new Promise((resolve, reject) => {
      prepared.callback = (error) => (error ? reject(error) : resolve());
      prepared.on('row', (row) => sums.push(row[0].value));
      connection.execute(prepared, { a });
    });
  }
  await new Promise((resolve, reject) => { prepared.callback = (error) => (error ? reject(error) : resolve()); connection.unprepare(prepared); });
  show('prepared', sums);

  await run(connection, 'create table Kept (n int primary key)', [], 'execSqlBatch');
  await promised((done) => connection.beginTransaction(done));
  show('changed', (await run(connection, 'insert into Kept values (1), (2)')).count);
  await promised((done) => connection.rollbackTransaction(done));
  show('rolled back', (await run(connection, 'select count(*) from Kept')).rows);
  await promised((done) => connection.beginTransaction(done));
  await run(connection, 'insert into Kept values (3)');
  await promised((done) => connection.commitTransaction(done));
  show('committed', (await run(connection, 'select n from Kept')).rows);
  await run(connection, 'create table Loaded (n int not null, t nvarchar(20), d float default 7)', [], 'execSqlBatch');
  const load = (rows) => new Promise((resolve, reject) => {
    const bulk = connection.newBulkLoad('Loaded', (error, count) => (error ? reject(error) : resolve(count)));
    bulk.addColumn('n', TYPES.Int, { nullable: true });
    bulk.addColumn('t', TYPES.NVarChar, { nullable: true, length: 20 });
    bulk.addColumn('d', TYPES.Float, { nullable: true });
    connection.execBulkLoad(bulk, rows);
  });
  show('loaded', [await load([[5, '中😀', 1.5], [6, null, null]]), (await run(connection, 'select * from Loaded order by n')).rows]);
  const unloaded = await load([[8, 'x', 1], [null, 'y', 2]]).then(() => null, (failure) => failure.number);
  show('not loaded', [unloaded, (await run(connection, 'select count(*) from Loaded')).rows]);
  // In a transaction nothing of it stays, and all that was before it.
  await promised((done) => connection.beginTransaction(done));
  await run(connection, "insert into Loaded values (9, N'own', 1)");
  await load([...Array(1200).keys(), null].map((n) => [n, 'x', 1])).catch(() => null);
  await promised((done) => connection.commitTransaction(done));
  show('not loaded in a transaction', (await run(connection, 'select count(*) from Loaded')).rows);
  await run(connection, 'drop table Loaded', [], 'execSqlBatch');
  for (const text of ['insert into Kept values (3)', 'select * from Nowhere', "select 1\nselec 2"]) {
    const error = await run(connection, text, [], 'execSqlBatch').then(() => null, (failure) => failure);
    show('error', [error.number, error.class, error.lineNumber, error.message]);
  }
  await run(connection, 'drop table Kept', [], 'execSqlBatch');

  const endless = new Promise((resolve) => {
    const cancelling = setInterval(() => connection.cancel(), 20);
    const done = (error) => { clearInterval(cancelling); resolve(error.code); };
    connection.execSqlBatch(new Request('declare @n int = 0; while 1 = 1 set @n = @n + 1', done));
  });
  show('cancelled', await endless);
  await promised((done) => connection.reset(done));
  show('after', (await run(connection, 'select @@trancount')).rows);
  connection.close();
  const refused = await connect({ authentication: { type: 'default', options: { userName: user, password: 'wrong' } } }).then(() => null, (failure) => failure);
  show('refused', [refused.code, refused.message]);
}

main().catch((error) => { console.log(`failed: ${error.stack}`); process.exitCode = 1; });
