// A supervisor's day: orders are picked, delivered and uploaded, while another one looks on.
import assert from 'node:assert/strict';
import { countOf, look, pageOf, served, step, tab } from './browser.mjs';

export async function supervisorsDay() {
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
}
