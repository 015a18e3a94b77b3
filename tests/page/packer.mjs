// A packer's morning, with a server that goes away, and a round at the shelves.
import assert from 'node:assert/strict';
import { look, pageOf, scan, sendable, served } from './browser.mjs';

/** Orders that may be packed, and are not checked yet. */
function parcels(count) {
  const free = sendable(count, 'FPIckingGoodsStatus = 0').map(({ FID }) => FID);
  return free.map((key) => {
    const code = served.query(`SELECT CAST(FUniqueCode AS nvarchar(30)) AS Code FROM IC_Web2ERPOrders WHERE FID = ${key}`)[0].Code;
    const weight = Number(JSON.parse(served.make('call', 'NewGetWeightByFID', `sFID=${key}`, '--json')).FWeight);
    return { key, code, weight: weight > 0 ? weight.toFixed(3) : '1.500' };
  });
}

export async function packersMorning() {
  const [first, second, third] = parcels(3);
  const page = await pageOf('pia');
  // A packer finds the desk, and no uploads; of the steps those of the desk.
  assert.equal(await page.getByRole('navigation').getByRole('link', { name: 'Uploads', exact: true }).count(), 0);
  await page.goto(`${served.url}/#/orders?tab=toBeDelivered`);
  const steps = page.getByRole('toolbar').getByRole('button');
  // On a busy machine the first click may meet a row of the tab before, which goes and takes the selection with it.
  for (let tries = 0; tries < 5 && (await steps.filter({ hasText: 'Picking checked' }).count()) === 0; ++tries) {
    await page.locator('.grid-row').first().click();
    await steps.filter({ hasText: 'Picking checked' }).waitFor({ timeout: 6000 }).catch(() => {});
  }
  assert.deepEqual([await steps.filter({ hasText: /^Picking checked$/ }).count(), await steps.filter({ hasText: /^Deliver$/ }).count()], [1, 0]);
  await page.getByRole('link', { name: 'Packing desk' }).click();
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
}

/** A round over a lot at the shelves: one line is short, one gets a batch number, the complete orders are confirmed. */
export async function shelfRound() {
  const lot = sendable(4, "o.FPickRem = ''", 2);
  const keys = lot.map(({ FID }) => FID);
  served.make('sql', `UPDATE IC_Web2ERPOrdersEx SET FLotNumber = 'L77' WHERE FID IN (${keys})`);
  const page = await pageOf('ann', { viewport: { width: 400, height: 760 } });
  await page.goto(`${served.url}/#/shelf`);
  await page.getByRole('button', { name: 'L77: 4 orders' }).waitFor();
  await look(page, 'shelf');
  await page.getByRole('button', { name: 'L77: 4 orders' }).click();
  await page.getByLabel('Picker').selectOption({ index: 2 });
  await page.getByRole('button', { name: 'Begin' }).click();
  const round = await page.waitForFunction(() => JSON.parse(localStorage.getItem('tessarlorn.round')));
  const { lines } = await round.jsonValue();
  const walked = lines.map(({ stockName, place }) => `${stockName} ${place}`);
  assert.deepEqual([...new Set(walked)], walked.filter((place, at) => place !== walked[at - 1]), 'no place is walked to twice');
  await look(page, 'shelf-line');
  const [{ needs: [batched], number }, short] = [lines[0], lines.at(-1)];
  await page.getByRole('button', { name: 'Batch' }).click();
  await page.getByRole('dialog').getByRole('textbox').fill('B-2026-11');
  await page.getByRole('dialog').getByRole('button', { name: 'Save' }).click();
  await page.getByText('Batch B-2026-11 for').waitFor();
  await scan(page, `${number}x`);
  await page.getByText('is wrong here').waitFor();
  for (const [at, line] of lines.entries()) {
    await page.getByText(`${at + 1} of ${lines.length}`, { exact: true }).waitFor();
    if (line !== short) await scan(page, line.number);
  }
  await page.getByRole('button', { name: 'Short' }).click();
  await page.getByRole('dialog').getByRole('button', { name: 'Save' }).click();
  const left = lot.find(({ FID }) => FID === short.needs[0].order);
  await page.getByRole('listitem').getByText(left.FOrderID).waitFor();
  await look(page, 'shelf-end');
  await page.getByRole('button', { name: 'Confirm 3 orders' }).click();
  const picked = () => served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FOrderStatus = 6 AND FID IN (${keys})`);
  for (let tries = 0; picked().length < 3 && tries < 20; ++tries) await page.waitForTimeout(250);
  assert.deepEqual(picked().map(({ FID }) => FID).sort(), keys.filter((key) => key !== left.FID).sort());
  const batch = served.query(`SELECT FBatchNo FROM IC_Web2ERPOrdersEntry WHERE FEntryID = ${batched.entry}`);
  assert.deepEqual(batch, [{ FBatchNo: 'B-2026-11' }]);
}
