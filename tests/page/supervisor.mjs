// A supervisor's day: orders are picked, delivered and uploaded, while another one looks on.
import assert from 'node:assert/strict';
import { countOf, look, pageOf, served, step, tab } from './browser.mjs';

export async function supervisorsDay() {
  const sue = await pageOf('sue');
  const bob = await pageOf('bob');
  await bob.goto(`${served.url}/#/orders?tab=toBePicked`);
  await sue.goto(`${served.url}/#/orders?tab=toBePicked`);
  const rows = sue.getByRole('grid').getByRole('row');
  await rows.nth(1).getByText('XS', { exact: false }).first().waitFor();
  const before = await countOf(bob, 'To be picked');
  const orders = served.query('SELECT COUNT(*) AS N FROM IC_Web2ERPOrders WHERE FOrderStatus = 2')[0].N;
  assert.ok(before > 10 && before <= orders, `${before} of ${orders} are to be picked`);
  await look(sue, 'orders');

  // All of them by two clicks, with most rows between them out of view.
  const beside = { x: 20, y: 10 };
  await sue.locator('.grid-row[data-row="0"]').click({ position: beside });
  await sue.locator('.grid').evaluate((grid) => { grid.scrollTop = grid.scrollHeight; });
  await sue.locator(`.grid-row[data-row="${before - 1}"]`).click({ modifiers: ['Shift'], position: beside, delay: 100 });
  await sue.getByText(`${before} selected`).waitFor();
  await sue.locator('.grid').evaluate((grid) => { grid.scrollTop = 0; });

  // Three orders by click and key, picked by sue, while bob looks on.
  await sue.locator('.grid-row[data-row="0"]').click({ position: beside });
  await sue.keyboard.press('Shift+ArrowDown');
  await sue.keyboard.press('Shift+ArrowDown');
  await sue.getByText('3 selected').waitFor();
  const said = await step(sue, 'Pick', async (dialog) => {
    await dialog.getByLabel('Picker').selectOption({ index: 1 });
    await dialog.getByLabel('Remark').fill(`O'Brien <b>"x"</b> 王`);
    await look(sue, 'step');
    await dialog.getByRole('button', { name: 'Check' }).click();
  });
  assert.match(said, /^3 /);
  const picked = served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FOrderStatus = 6 AND FPickRem = N'O''Brien <b>"x"</b> 王'`);
  assert.equal(picked.length, 3, 'the database has three picked orders with the remark as it was typed');
  await tab(bob, 'To be picked').getByText(String(before - 3)).waitFor();

  // One of them on its own: shown as text, delivered, stepped back.
  const key = picked[0].FID;
  await sue.goto(`${served.url}/#/order/${key}`);
  await sue.getByText(`O'Brien <b>"x"</b> 王`).first().waitFor();
  await look(sue, 'order');
  const status = () => served.query(`SELECT FOrderStatus FROM IC_Web2ERPOrders WHERE FID = ${key}`)[0].FOrderStatus;
  assert.match(await step(sue, 'Deliver'), /^1 /);
  assert.equal(status(), 14);
  assert.match(await step(sue, 'Mark as uploaded', (dialog) => dialog.getByRole('button', { name: 'Check' }).click()), /^1 /);
  assert.match(await step(sue, 'Back to delivery'), /^1 /);
  assert.equal(status(), 6);

  // From anywhere by a number.
  const { FOrderID: number } = served.query('SELECT FOrderID FROM IC_Web2ERPOrders WHERE FID = 75')[0];
  await sue.keyboard.press('/');
  await sue.keyboard.type(number);
  await sue.keyboard.press('Enter');
  await sue.waitForURL(/order\/75$/);
}
