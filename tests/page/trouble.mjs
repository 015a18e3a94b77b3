// Trouble at work: others are faster, the login ends, the server is slow, or an operation fails.
import assert from 'node:assert/strict';
import { look, pageOf, served, show, step } from './browser.mjs';
import { password } from './served.mjs';

const ordersWith = (where) => served.query(`SELECT FID, FOrderID FROM IC_Web2ERPOrders WHERE ${where} ORDER BY FID`);

export async function conflict() {
  const ann = await pageOf('ann');
  const bob = await pageOf('bob');
  await show(ann, 'orders?tab=toBePicked');
  const rows = ann.getByRole('grid').getByRole('row');
  await rows.nth(1).getByText('XS').first().waitFor();
  await rows.nth(1).click();
  await ann.keyboard.press('Shift+ArrowDown');
  await ann.keyboard.press('Shift+ArrowDown');
  const number = (await rows.nth(2).innerText()).match(/XS\d+/)[0];
  await ann.getByRole('toolbar').getByRole('button', { name: 'Pick', exact: true }).click();
  const dialog = ann.getByRole('dialog');
  const fillIn = (remark) => async (form) => {
    await form.getByLabel('Picker').selectOption({ index: 1 });
    await form.getByLabel('Remark').fill(remark);
    await form.getByRole('button', { name: 'Check' }).click();
  };
  await fillIn('by ann')(dialog);
  await dialog.getByText('3 orders will change.').waitFor();
  await show(bob, `order/${ordersWith(`FOrderID = '${number}'`)[0].FID}`);
  assert.match(await step(bob, 'Pick', fillIn('by bob')), /^1 /);
  await dialog.getByRole('button', { name: 'Pick: 3 orders' }).click();
  await dialog.getByText('2 orders done.').waitFor();
  await dialog.getByRole('row', { name: number }).getByText('It is “To be delivered”').waitFor();
  await look(ann, 'conflict');
  assert.equal(ordersWith("FOrderStatus = 6 AND FPickRem = 'by ann'").length, 2);
  assert.equal(ordersWith("FOrderStatus = 6 AND FPickRem = 'by bob'")[0].FOrderID, number, 'the first pick stands');
}

export async function lapsedLogin() {
  const page = await pageOf('ann');
  await show(page, 'order/75');
  await page.getByRole('button', { name: 'Delivery remark' }).click();
  const dialog = page.getByRole('dialog', { name: 'Delivery remark' });
  await dialog.getByRole('textbox').fill('typed before the login ended');
  served.make('sql', 'DELETE FROM DoorSession');
  // The server remembers callers for a second.
  await page.waitForTimeout(1200);
  await dialog.getByRole('button', { name: 'Check' }).click();
  const again = page.getByRole('dialog', { name: 'Your login has ended' });
  await again.getByLabel('Password').fill(password);
  await look(page, 'login-again');
  await again.getByRole('button', { name: 'Log in' }).click();
  await again.waitFor({ state: 'detached' });
  await dialog.getByRole('button', { name: 'Try again' }).click();
  await dialog.getByRole('button', { name: 'Delivery remark: 1' }).click();
  await dialog.getByText('1 order done.').waitFor();
  assert.equal(ordersWith("FID = 75 AND FShippingRem = 'typed before the login ended'").length, 1);
}

export async function failures() {
  const page = await pageOf('ann');
  await page.route('**/workbench/rows', async (route) => {
    await new Promise((done) => setTimeout(done, 3000));
    await route.continue();
  });
  await show(page, 'orders?tab=toBeDelivered');
  await page.getByRole('status').getByText('Loading…').waitFor();
  await page.screenshot({ path: 'slow.png' });
  assert.equal(await page.getByRole('alert').count(), 0, 'slow is no error');
  await page.getByRole('grid').getByText(/^XS/).first().waitFor();
  await page.unrouteAll({ behavior: 'wait' });

  const problem = { status: 500, contentType: 'application/problem+json', json: { detail: 'It broke' } };
  await page.route('**/workbench/orders', (route) => route.fulfill(problem));
  await show(page, 'orders?tab=delivered');
  await page.getByRole('alert').getByText('It broke').waitFor();
  await page.unroute('**/workbench/orders');
  await page.getByRole('alert').getByRole('button', { name: 'Try again' }).click();
  await page.getByRole('grid').getByText(/^XS/).first().waitFor();
  await page.getByRole('alert').waitFor({ state: 'detached' });

  // The second call of the step is the one that writes.
  await show(page, 'order/75');
  await page.getByRole('button', { name: 'Logistics cost' }).click();
  const dialog = page.getByRole('dialog');
  await dialog.getByLabel('Logistics cost').fill('7.25');
  await dialog.getByRole('button', { name: 'Check' }).click();
  await dialog.getByText('1 order will change.').waitFor();
  await page.route('**/ModifyCost?*', (route) => route.fulfill(problem), { times: 1 });
  await dialog.getByRole('button', { name: 'Logistics cost: 1' }).click();
  await dialog.getByRole('alert').getByText('It broke').waitFor();
  await dialog.getByRole('button', { name: 'Try again' }).click();
  await dialog.getByText('1 order done.').waitFor();
  assert.equal(ordersWith('FID = 75 AND FLogisticsCost = 7.25').length, 1);
}
