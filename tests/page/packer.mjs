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
