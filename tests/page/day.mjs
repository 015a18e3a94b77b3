// A packer's morning and a supervisor's day on sample orders, at one server: node day.mjs COMMAND.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { readFileSync, writeFileSync } from 'node:fs';
import { chromium } from 'playwright-core';
import { password, Served } from './served.mjs';

const served = new Served(process.argv[2]);
await served.start();
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
const wrongs = [];

/** A page of a user of the door, logged in. */
async function pageOf(user, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: 'en-GB', ...options });
  const page = await context.newPage();
  page.setDefaultTimeout(10_000);
  page.on('pageerror', (error) => wrongs.push(`${page.url()}: ${error}`));
  page.on('console', (message) => {
    if (message.text().includes('Content Security Policy')) wrongs.push(message.text());
  });
  page.on('request', (request) => {
    if (!request.url().startsWith(served.url) && !request.url().startsWith('data:')) wrongs.push(`asks ${request.url()}`);
  });
  await page.goto(served.url);
  await page.getByLabel('User').fill(user);
  await page.getByLabel('Password').fill(password);
  await page.getByRole('button', { name: 'Log in' }).click();
  await page.getByRole('navigation', { name: 'Main' }).waitFor();
  return page;
}

const tab = (page, name) => page.getByRole('link', { name: new RegExp(`^${name}`) });
/** Counts come after the rows. */
async function countOf(page, name) {
  await tab(page, name).getByText(/\d/).first().waitFor();
  return Number((await tab(page, name).innerText()).replace(/\D/g, ''));
}

/** What a scanner does: types fast, and ends with Enter. */
async function scan(page, code) {
  await page.keyboard.type(String(code));
  await page.keyboard.press('Enter');
}

/** Violations of WCAG 2.2 AA and below, on what is shown now. */
async function checkAccess(page, screen) {
  await page.evaluate(readFileSync('node_modules/axe-core/axe.min.js', 'utf8'));
  const tags = ['wcag2a', 'wcag2aa', 'wcag21a', 'wcag21aa', 'wcag22aa'];
  const { violations } = await page.evaluate((values) => window.axe.run({ runOnly: values }), tags);
  for (const { id, nodes } of violations) wrongs.push(`${screen}: ${id} at ${nodes[0].target} (${nodes.length})`);
}

/** Looks at a screen in both themes, wide and narrow. */
async function look(page, name) {
  for (const theme of ['light', 'dark']) {
    await page.emulateMedia({ colorScheme: theme });
    await checkAccess(page, `${name} ${theme}`);
    await page.screenshot({ path: `${name}-${theme}.png` });
  }
  const size = page.viewportSize();
  await page.setViewportSize({ width: 360, height: 740 });
  const wide = await page.evaluate(() => document.documentElement.scrollWidth);
  if (wide > 360) wrongs.push(`${name}: ${wide} pixels wide at 360`);
  await page.screenshot({ path: `${name}-narrow.png` });
  await page.setViewportSize(size);
  await page.emulateMedia({ colorScheme: 'light' });
}

/** Takes the step that the bar offers for what is selected, to its end; answers what the dialog says then. */
async function step(page, name, fillIn = async () => {}) {
  await page.getByRole('toolbar').getByRole('button', { name, exact: true }).click();
  const dialog = page.getByRole('dialog');
  await fillIn(dialog);
  await dialog.getByRole('button', { name: new RegExp(`^${name}: `) }).click();
  await dialog.getByText(/orders done/).waitFor();
  const said = await dialog.getByText(/orders done/).innerText();
  await dialog.getByRole('button', { name: 'Close' }).click();
  return said;
}

async function supervisorsDay() {
  const ann = await pageOf('ann');
  const bob = await pageOf('bob');
  await bob.goto(`${served.url}/#/orders?tab=toBePicked`);
  await ann.goto(`${served.url}/#/orders?tab=toBePicked`);
  const rows = ann.getByRole('grid').getByRole('row');
  await rows.nth(1).getByText('XS', { exact: false }).first().waitFor();
  const before = await countOf(bob, 'To be picked');
  const orders = served.query('SELECT COUNT(*) AS N FROM IC_Web2ERPOrders WHERE FOrderStatus = 2')[0].N;
  assert.ok(before > 10 && before <= orders, `${before} of ${orders} are to be picked`);
  await look(ann, 'orders');

  // Three orders by click and key, picked by ann, while bob looks on.
  await rows.nth(1).click();
  await ann.keyboard.press('Shift+ArrowDown');
  await ann.keyboard.press('Shift+ArrowDown');
  await ann.getByText('3 selected').waitFor();
  const said = await step(ann, 'Pick', async (dialog) => {
    await dialog.getByLabel('Picker').selectOption({ index: 1 });
    await dialog.getByLabel('Remark').fill(`O'Brien <b>"x"</b> 王`);
    await look(ann, 'step');
    await dialog.getByRole('button', { name: 'Check' }).click();
  });
  assert.match(said, /^3 /);
  const picked = served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FOrderStatus = 6 AND FPickRem = N'O''Brien <b>"x"</b> 王'`);
  assert.equal(picked.length, 3, 'the database has three picked orders with the remark as it was typed');
  await tab(bob, 'To be picked').getByText(String(before - 3)).waitFor();

  // One of them on its own: shown as text, delivered, stepped back.
  const key = picked[0].FID;
  await ann.goto(`${served.url}/#/order/${key}`);
  await ann.getByText(`O'Brien <b>"x"</b> 王`).first().waitFor();
  await look(ann, 'order');
  const status = () => served.query(`SELECT FOrderStatus FROM IC_Web2ERPOrders WHERE FID = ${key}`)[0].FOrderStatus;
  assert.match(await step(ann, 'Deliver'), /^1 /);
  assert.equal(status(), 14);
  assert.match(await step(ann, 'Mark as uploaded', (dialog) => dialog.getByRole('button', { name: 'Check' }).click()), /^1 /);
  assert.match(await step(ann, 'Back to delivery'), /^1 /);
  assert.equal(status(), 6);

  // From anywhere by a number.
  const { FOrderID: number } = served.query('SELECT FOrderID FROM IC_Web2ERPOrders WHERE FID = 75')[0];
  await ann.keyboard.press('/');
  await ann.keyboard.type(number);
  await ann.keyboard.press('Enter');
  await ann.waitForURL(/order\/75$/);
  await ann.context().close();
  await bob.context().close();
}

/** Orders that may be packed: checked neither, locked nor refunded. */
function parcels(count) {
  const free = served.query(`SELECT FID FROM IC_Web2ERPOrders o WHERE FOrderStatus = 6 AND FPIckingGoodsStatus = 0 AND FUniqueCode > 0
    AND FTransactionStatus <> 38195 AND FCheckStatus = 1
    AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID = o.FID AND x.FIsLock <> 0)
    AND NOT EXISTS (SELECT 1 FROM IC_StockBillOrdersStatus s WHERE s.FID = o.FID)
    AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry e WHERE e.FID = o.FID AND (e.FRefundStatus = 1 OR e.FRowClosed = 1
      OR e.FStatus LIKE 'TRADE_CLOSED%'))`).slice(0, count).map(({ FID }) => FID);
  assert.equal(free.length, count, 'the sample data have enough parcels');
  return free.map((key) => {
    const code = served.query(`SELECT CAST(FUniqueCode AS nvarchar(30)) AS Code FROM IC_Web2ERPOrders WHERE FID = ${key}`)[0].Code;
    const weight = Number(JSON.parse(served.make('call', 'NewGetWeightByFID', `sFID=${key}`, '--json')).FWeight);
    return { key, code, weight: weight > 0 ? weight.toFixed(3) : '1.500' };
  });
}

async function packersMorning() {
  const [first, second, third] = parcels(3);
  const page = await pageOf('ann');
  await page.goto(`${served.url}/#/shelf`);
  await page.getByRole('heading').first().waitFor();
  await look(page, 'shelf');
  await page.goto(`${served.url}/#/desk`);
  await page.getByText('Ready. Scan a parcel.').waitFor();
  const pack = async ({ code, weight }) => {
    await scan(page, code);
    await page.getByText('Weigh the parcel').waitFor();
    await scan(page, weight);
    await page.getByText(`Scan the next parcel`).waitFor();
  };
  await pack(first);
  await look(page, 'desk');
  await pack(second);

  // The server is killed between two scans. What is scanned meanwhile is kept, and sent when it is back.
  await served.kill();
  await scan(page, third.code);
  await page.getByText('is looked up when it is back').first().waitFor();
  await scan(page, third.weight);
  await page.getByText('Scan the next parcel').waitFor();
  await page.keyboard.press('Enter');
  await page.screenshot({ path: 'desk-without-server.png' });
  await served.start();
  const done = () => served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FPIckingGoodsStatus = 1 AND FWeighttingStatus = 1
    AND FID IN (${first.key}, ${second.key}, ${third.key})`).length;
  for (let tries = 0; done() < 3 && tries < 40; ++tries) await page.waitForTimeout(500);
  assert.equal(done(), 3, 'each scanned parcel is checked and weighed');
  const logged = served.query(`SELECT FOrderFID FROM IC_TradeLog WHERE FOPCode = 3014 AND FOrderFID IN (${first.key}, ${second.key},
    ${third.key})`);
  assert.equal(logged.length, 3, 'each check was made once');

  // A parcel that may not go.
  const [refused] = served.query('SELECT TOP 1 CAST(o.FUniqueCode AS nvarchar(30)) AS Code FROM IC_Web2ERPOrders o WHERE FOrderStatus = 2 AND FUniqueCode > 0');
  await scan(page, refused.Code);
  await page.getByText(/Stop\. Order/).first().waitFor();
  await page.context().close();
}

async function prints() {
  const page = await pageOf('ann');
  const [parcel] = served.query(`SELECT TOP 1 FID, CAST(FUniqueCode AS nvarchar(30)) AS Code, FLogisticsOrder FROM IC_Web2ERPOrders
    WHERE FUniqueCode > 0 AND FLogisticsOrder <> ''`);
  await page.goto(`${served.url}/#/print/label?keys=${parcel.FID}`);
  await page.locator('svg').first().waitFor();
  await look(page, 'print');
  writeFileSync('label.pdf', await page.pdf({ preferCSSPageSize: true, printBackground: true }));
  execFileSync('pdftoppm', ['-r', '200', '-png', 'label.pdf', 'label']);
  const size = execFileSync('pdfinfo', ['label.pdf']).toString();
  assert.match(size, /Pages: +1\n/);
  assert.match(size, /Page size: +28[23]\.\d+ x 425\.\d+ pts/, 'the label is 100 x 150 mm');
  const codes = execFileSync('zbarimg', ['-q', '--raw', 'label-1.png']).toString().trim().split('\n').sort();
  assert.deepEqual(codes, [parcel.Code, parcel.FLogisticsOrder].sort(), 'both codes of the label can be read');
  await page.context().close();
}

try {
  for (const part of [supervisorsDay, packersMorning, prints]) {
    const began = Date.now();
    await part();
    console.log(`${part.name}: done in ${((Date.now() - began) / 1000).toFixed(0)} s`);
  }
  assert.deepEqual(wrongs, [], 'nothing went wrong on the way');
} finally {
  await browser.close();
  await served.kill();
}
