// The office: the ramp, outside warehouses, invoices, uploads, figures, the log, users and single operations.
import assert from 'node:assert/strict';
import { look, pageOf, saved, sendable, served, show } from './browser.mjs';

const one = (sql) => Object.values(served.query(sql)[0])[0];

/** Runs what the dialog offers, to its end. */
async function run(page) {
  const dialog = page.getByRole('dialog');
  await dialog.locator('button.main').click();
  await dialog.getByText(/\d orders? done/).waitFor();
  return dialog.innerText();
}

const close = (page) => page.getByRole('dialog').getByRole('button', { name: 'Close' }).click();

export async function ramp() {
  const page = await pageOf('dan');
  const orders = sendable(10, 'FPIckingGoodsStatus = 1');
  const line = ({ FOrderID }, index, weight = `1.${index}5`) => [FOrderID, `RAMP${index}`, weight, 6.5].join('\t');
  const lines = orders.map((order, index) => line(order, index, index === 4 ? '1,25' : index === 9 ? '-1' : undefined));
  await show(page, 'ramp');
  const table = ['Order number\tWaybill\tWeight\tCost', ...lines, line(orders[0], 10), line({ FOrderID: 'XS0' }, 11)];
  await page.getByLabel('Parcels: paste').fill(table.join('\n'));
  await page.getByLabel('Mark as weighed').check();
  await page.getByLabel('Deliver').check();
  await page.getByText('12 lines: 9 can be done, 3 have errors').waitFor();
  await look(page, 'ramp');
  const keys = orders.map(({ FID }) => FID);
  const before = served.query(`SELECT FLogisticsOrder, FWeight, FOrderStatus FROM IC_Web2ERPOrders WHERE FID = ${keys[9]}`);
  await page.getByRole('button', { name: '9 parcels…' }).click();
  assert.match(await run(page), /\b9 orders done/);
  await close(page);
  const stored = served.query(`SELECT FLogisticsOrder, FWeight, FLogisticsCost, FWeighttingStatus, FOrderStatus
    FROM IC_Web2ERPOrders WHERE FLogisticsOrder LIKE 'RAMP%' ORDER BY FLogisticsOrder`);
  const wanted = orders.slice(0, 9).map((_, index) => ({ FLogisticsOrder: `RAMP${index}`,
    FWeight: index === 4 ? 1.25 : Number(`1.${index}5`), FLogisticsCost: 6.5, FWeighttingStatus: 1, FOrderStatus: 14 }));
  assert.deepEqual(stored, wanted, 'the right lines are numbered, weighed and delivered');
  const after = served.query(`SELECT FLogisticsOrder, FWeight, FOrderStatus FROM IC_Web2ERPOrders WHERE FID = ${keys[9]}`);
  assert.deepEqual(after, before, 'the order with a wrong weight is as it was');
  const wrong = (await saved(page, 'Save the errors as CSV')).trim().split(/\r?\n/).slice(1);
  assert.match(wrong.join('\n'), /^11,.*above 0.*: -1\n12,.*in line 2 already.*\n13,XS0,.*No order has this number$/);
}

export async function outside() {
  const page = await pageOf('ann');
  await show(page, 'outside');
  await page.getByRole('button', { name: /^May be submitted [1-9]/ }).waitFor();
  const last = one('SELECT MAX(FRowID) AS N FROM TPLTaskFlow');
  const list = page.getByRole('region', { name: 'May be submitted' });
  // Until its names are there, a row shows the key.
  const number = await list.getByRole('row').nth(1).getByRole('link', { name: /^XS/ }).innerText();
  await look(page, 'outside');
  await list.getByLabel(`Select ${number}`).check();
  await page.getByRole('button', { name: 'Submit: 1 order…' }).click();
  assert.match(await run(page), /\b1 order done/);
  await close(page);
  const tasks = served.query(`SELECT FTaskName, FStatus, FUserName FROM TPLTaskFlow WHERE FRowID > ${last}`);
  const key = one(`SELECT FID FROM IC_Web2ERPOrders WHERE FOrderID = '${number}'`);
  assert.deepEqual(tasks, [{ FTaskName: String(key), FStatus: 0, FUserName: 'ann' }]);
  await page.getByRole('region', { name: 'Queue' }).getByRole('row', { name: 'Queued' }).getByText('ann').waitFor();
}

export async function invoices() {
  const page = await pageOf('ann');
  const { FinterID: key, FBillNo: number } = served.query('SELECT TOP 1 FinterID, FBillNo FROM ICExpenses')[0];
  const orders = served.query("SELECT TOP 2 FID, FOrderID, FUniqueCode FROM IC_Web2ERPOrders WHERE FFeeBillNO = '' AND FOrderStatus = 14");
  const covered = () => served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FFeeBillNO = '${key}'`).map(({ FID }) => FID);
  const before = covered();
  await show(page, 'invoices');
  await page.getByRole('link', { name: number, exact: true }).waitFor();
  await look(page, 'invoices');
  await page.getByRole('link', { name: number, exact: true }).click();
  await page.getByLabel('Link orders').fill(`${orders[0].FOrderID}\nXS0\n${orders[1].FOrderID}\n`);
  await page.getByRole('button', { name: 'Check' }).click();
  await page.getByText('2 orders will change.').waitFor();
  assert.match(await run(page), /\b2 orders done/);
  assert.deepEqual(covered().sort(), [...before, ...orders.map(({ FID }) => FID)].sort());
  await page.getByRole('dialog').getByRole('button', { name: 'Undo' }).click();
  await page.getByRole('dialog', { name: 'Unlink' }).waitFor();
  assert.match(await run(page), /\b2 orders done/);
  await close(page);
  assert.deepEqual(covered(), before, 'undone, the invoice covers what it did');
  await page.getByText('Not found: XS0').waitFor();
  await look(page, 'invoice');
}

export async function uploads() {
  const page = await pageOf('ann');
  await show(page, 'uploads');
  const group = page.getByRole('button', { name: /^Failed: / }).first();
  const [, reason, count] = (await group.innerText()).match(/^Failed: (.*) (\d+)$/);
  const keys = served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FUpLoadStatus = 2 AND FReasonsForFailure = N'${reason}'`);
  assert.equal(keys.length, Number(count));
  await group.click();
  await page.getByRole('button', { name: `Upload again: ${count} orders…` }).waitFor();
  await look(page, 'uploads');
  await page.getByRole('button', { name: `Upload again: ${count} orders…` }).click();
  assert.match(await run(page), new RegExp(`\\b${count} orders done`));
  await close(page);
  await group.waitFor({ state: 'detached' });
  const states = served.query(`SELECT DISTINCT FUpLoadStatus, FReasonsForFailure FROM IC_Web2ERPOrders
    WHERE FID IN (${keys.map(({ FID }) => FID)})`);
  assert.deepEqual(states, [{ FUpLoadStatus: 0, FReasonsForFailure: '' }]);
}

/** How many orders the list has that a link of the figures opens. */
async function listed(page) {
  await page.waitForURL(/#\/orders\?/);
  const said = page.getByRole('status').getByText(/^[\d,]+ orders?/);
  return parseInt((await said.innerText()).replace(/,/g, ''), 10);
}

export async function figures() {
  const page = await pageOf('ann');
  served.make('sql', `UPDATE IC_Web2ERPOrders SET FSendDate = GETDATE(), FShippingMan = 16394
    WHERE FID = (SELECT MAX(FID) FROM IC_Web2ERPOrders WHERE FOrderStatus = 14)`);
  const last = one('SELECT CONVERT(char(10), MAX(FOrderPickingDate), 120) AS N FROM IC_Web2ERPOrders WHERE FOrderStatus = 14');
  const path = `figures?day=${last}&days=30`;
  await show(page, path);
  const cards = page.getByRole('region', { name: 'Now' }).getByRole('link');
  await cards.first().waitFor();
  await look(page, 'figures');
  const follow = async (link, number, title) => {
    await link.focus();
    await page.keyboard.press('Enter');
    assert.equal(await listed(page), number, title);
    await show(page, path);
    await cards.first().waitFor();
  };
  for (let at = 0; at < 4; ++at) {
    const [text, number] = (await cards.nth(at).innerText()).split('\n');
    await follow(cards.nth(at), Number(number), text);
  }
  const plots = await page.locator('section.card h2').allInnerTexts();
  assert.equal(plots.length, 6);
  for (const title of plots) {
    const plot = page.locator('section.card').filter({ has: page.getByRole('heading', { name: title, exact: true }) });
    await plot.locator('summary').click();
    const bars = plot.getByRole('link', { name: /: [1-9]/ });
    const bar = bars.nth(Math.floor(await bars.count() / 2));
    await follow(bar, Number(await bar.innerText()), title);
  }
}

export async function log() {
  const keys = served.query('SELECT TOP 3 FID FROM IC_Web2ERPOrders WHERE FOrderStatus = 6').map(({ FID }) => FID);
  served.make('call', 'MarkPickingGoodsStatus', `dctPara.FID=${keys}`, 'dctPara.UserId=16394');
  served.make('call', 'ClearPickingGoodsStatus', `dctPara.FID=${keys[0]}`, 'dctPara.UserId=16394');
  const page = await pageOf('ann');
  await show(page, 'log');
  await page.getByLabel('Operation').selectOption('3014');
  await page.getByRole('button', { name: 'Show', exact: true }).click();
  await page.waitForURL(/code=3014/);
  const count = one('SELECT COUNT(*) AS N FROM IC_TradeLog WHERE FOPCode = 3014');
  await page.getByText(`${count} entries`, { exact: true }).waitFor();
  assert.equal(await page.getByRole('region', { name: 'Log' }).getByRole('row').count(), count + 1);
  await look(page, 'log');
  assert.equal((await saved(page, 'Save all as CSV')).trim().split(/\r?\n/).length, count + 1);
}

export async function settings() {
  const page = await pageOf('ann');
  const dialog = page.getByRole('dialog');
  await show(page, 'settings/users');
  await page.getByRole('button', { name: 'Add a user' }).click();
  await dialog.getByLabel('Name').fill('cy');
  await dialog.getByLabel('Password').fill('s3cret-pass');
  await dialog.getByLabel('User of the ERP').fill('16394');
  await dialog.getByLabel('Role').selectOption('picker');
  await dialog.getByLabel('Language').selectOption('EN');
  await look(page, 'settings-user');
  await dialog.getByRole('button', { name: 'Save' }).click();
  await page.getByRole('button', { name: 'Change: cy' }).waitFor();
  for (const part of ['users', 'switches']) {
    await show(page, `settings/${part}`);
    await page.getByRole('table').first().waitFor();
    await look(page, `settings-${part}`);
  }
  const [order] = sendable(1, 'FPIckingGoodsStatus = 0');
  const picker = await pageOf('cy');
  await show(picker, `order/${order.FID}`);
  await picker.getByRole('button', { name: 'Picking checked', exact: true }).waitFor();
  assert.equal(await picker.getByRole('button', { name: 'Deliver', exact: true }).count(), 0);
  // What was allowed when the page was opened is refused in words.
  served.make('user', 'set', 'cy', '--role', 'reader');
  await picker.waitForTimeout(1100);
  await picker.getByRole('button', { name: 'Picking checked', exact: true }).click();
  await picker.getByRole('dialog').getByRole('alert').getByText(/^You may not do this: ./).waitFor();
  await picker.context().close();

  await show(page, 'settings/tokens');
  await page.getByRole('button', { name: 'Make a token' }).click();
  await dialog.getByLabel('User').selectOption('ann');
  await dialog.getByLabel('Name, for').fill('printer');
  await dialog.getByRole('button', { name: 'Make', exact: true }).click();
  const token = await dialog.getByRole('region', { name: 'Token' }).innerText();
  await close(page);
  await look(page, 'settings-tokens');
  const me = () => fetch(`${served.url}/api/v1/me`, { headers: { Authorization: `Bearer ${token.trim()}` } });
  assert.equal((await (await me()).json()).user, 'ann');
  await page.getByRole('button', { name: 'Remove printer' }).click();
  await dialog.getByRole('button', { name: 'Remove' }).click();
  await page.getByText('No program has a token.').waitFor();
  assert.equal((await me()).status, 401, 'a token that was removed is refused');
}

export async function operations() {
  const page = await pageOf('ann');
  const wish = () => one('SELECT FDeliveryRemark FROM IC_Web2ERPOrders WHERE FID = 75');
  const before = wish();
  await show(page, 'console');
  await page.getByLabel('Find an operation').fill('DeRemark');
  await page.getByRole('link', { name: /^DeRemark/ }).click();
  await page.getByLabel(/^FID/).fill('75');
  await page.getByLabel(/^FDeliveryRemark/).fill(`Door 7, O'Neil`);
  await page.getByRole('button', { name: 'Dry run' }).click();
  await page.getByText('Nothing of this was kept.').waitFor();
  await page.getByText(/statements sent/).click();
  const statements = await page.getByRole('region', { name: /^SQL/ }).allInnerTexts();
  assert.match(statements.join(), /Update IC_Web2ERPOrders\s.*O''Neil/s);
  assert.equal(wish(), before, 'a dry run changes nothing');
  await look(page, 'console');
  await page.getByLabel(/^Dry run/).uncheck();
  await page.getByRole('button', { name: 'Run for good' }).click();
  await page.getByRole('dialog').getByRole('button', { name: 'Run for good' }).click();
  await page.getByText('Nothing of this was kept.').waitFor({ state: 'detached' });
  await page.getByRole('status').getByText(/^Status 200/).waitFor();
  assert.equal(wish(), `Door 7, O'Neil`);
}
