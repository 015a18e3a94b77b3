// What is printed: read as paper, and as people and scanners read it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { look, pageOf, sendable, served, show } from './browser.mjs';

/** The page of a print as PDF: its size, how many sheets it has, and its text as one reads it. */
async function paper(page, name, path) {
  await show(page, `print/${path}`);
  await page.locator('.paper > *').first().waitFor();
  writeFileSync(`${name}.pdf`, await page.pdf({ preferCSSPageSize: true, printBackground: true }));
  const told = execFileSync('pdfinfo', [`${name}.pdf`]).toString();
  const [, sheets] = told.match(/Pages: +(\d+)\n/);
  return { told, sheets: Number(sheets), text: execFileSync('pdftotext', ['-layout', `${name}.pdf`, '-']).toString() };
}

/** The codes that a scanner reads on the first sheet. */
function codesOf(name) {
  execFileSync('pdftoppm', ['-r', '200', '-png', '-f', '1', '-l', '1', '-singlefile', `${name}.pdf`, name]);
  const read = execFileSync('zbarimg', ['-q', '--raw', `${name}.png`], { stdio: ['ignore', 'pipe', 'ignore'] });
  return read.toString().trim().split('\n').sort();
}

export async function papers() {
  const page = await pageOf('ann');
  const orders = sendable(20, 'FPrintPickCount < 2 AND FPrintSendCount < 2', 2);
  const keys = orders.map(({ FID }) => FID);
  for (const [kind, sheets] of [['pick', 20], ['collected', 2], ['note', 20], ['list', 2]]) {
    const { told, sheets: made, text } = await paper(page, kind, `${kind}?keys=${keys}`);
    assert.match(told, /Page size: +59[45](\.\d+)? x 84[12](\.\d+)? pts/, `${kind} is A4`);
    assert.ok(made >= sheets, `${kind} has ${made} sheets`);
    const rows = served.query(`SELECT DISTINCT FOnlineTitle, FOuterID FROM IC_Web2ERPOrdersEntry WHERE FID IN (${keys.slice(0, 5)})`);
    if (kind === 'pick' || kind === 'collected') {
      for (const { FOuterID: article } of rows) assert.ok(text.includes(article), `${kind} holds ${article}`);
      assert.match(text, /[A-Z]\d*-\d+/, `${kind} holds places`);
    }
    for (const { FOrderID } of kind === 'collected' ? [] : orders) assert.ok(text.includes(FOrderID), `${kind} holds ${FOrderID}`);
    await look(page, `print-${kind}`);
  }
  // The code of the first sheet is what finds its order.
  const [code] = codesOf('pick');
  const [first] = served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FUniqueCode = ${code}`);
  await page.getByRole('combobox').first().focus();
  await page.keyboard.type(code, { delay: 40 });
  await page.keyboard.press('Enter');
  await page.waitForURL(new RegExp(`order/${first.FID}$`));

  // An order that was printed as often as is allowed is left out, and named.
  served.make('sql', `UPDATE IC_Web2ERPOrders SET FPrintPickCount = 2 WHERE FID = ${keys[0]}`);
  const { text } = await paper(page, 'limit', `pick?keys=${keys.slice(0, 2)}`);
  await page.getByRole('status').getByText(`${orders[0].FOrderID} (2 of 2)`).waitFor();
  assert.ok(!text.includes(orders[0].FOrderID) && text.includes(orders[1].FOrderID));
  await page.context().close();
}

export async function labels() {
  const page = await pageOf('ann');
  const [parcel] = served.query(`SELECT TOP 1 FID, CAST(FUniqueCode AS nvarchar(30)) AS Code, FLogisticsOrder FROM IC_Web2ERPOrders
    WHERE FUniqueCode > 0 AND FLogisticsOrder <> ''`);
  const { told } = await paper(page, 'label', `label?keys=${parcel.FID}`);
  await look(page, 'print');
  assert.match(told, /Pages: +1\n/);
  assert.match(told, /Page size: +28[23]\.\d+ x 425\.\d+ pts/, 'the label is 100 x 150 mm');
  assert.deepEqual(codesOf('label'), [parcel.Code, parcel.FLogisticsOrder].sort(), 'both codes of the label can be read');
  await page.context().close();
}
