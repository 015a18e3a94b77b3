// What is printed: read as paper, and as people and scanners read it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { look, pageOf, sendable, served, show } from './browser.mjs';

/** The page of a print as PDF: its size, how many sheets it has, and its text as one reads it. */
async function paper(page, name, path) {
  await show(page, `print/${path}`);
  await page.locator('.paper > *').first().waitFor();
  if (name !== 'limit') await look(page, `print-${name}`);
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
  const orders = sendable(6, 'FPrintPickCount = 0 AND FPrintSendCount = 0', 2);
  const keys = orders.map(({ FID }) => FID);
  // Freight and gift wrap (08) lie on no shelf.
  const articles = served.query(`SELECT DISTINCT FBarCode FROM IC_Web2ERPOrdersEntry WHERE FOuterID NOT LIKE '08.%'
    AND FID IN (${keys})`);
  const printed = () => served.query(`SELECT SUM(FPrintPickCount) AS pick, SUM(FPrintSendCount) AS note, SUM(FPrintSendList) AS list
    FROM IC_Web2ERPOrders WHERE FID IN (${keys})`)[0];
  const kinds = { pick: ['pick', 6], collected: ['pick', 1], note: ['note', 6], list: ['list', 1] };
  for (const [kind, [counter, fewest]] of Object.entries(kinds)) {
    const before = printed();
    const { told, sheets, text } = await paper(page, kind, `${kind}?keys=${keys}`);
    assert.match(told, /Page size: +59[45](\.\d+)? x 84[12](\.\d+)? pts/, `${kind} is A4`);
    assert.ok(sheets >= fewest, `${kind} has ${sheets} sheets`);
    if (counter === 'pick') {
      for (const { FBarCode } of articles) assert.ok(text.includes(FBarCode), `${kind} holds ${FBarCode}`);
      assert.match(text, / [A-Z]-\d\d /, `${kind} holds places`);
    }
    const named = kind === 'collected' ? [] : orders;
    for (const { FOrderID } of named) assert.ok(text.includes(FOrderID), `${kind} holds ${FOrderID}`);
    await page.getByRole('button', { name: 'Yes, count it' }).click();
    await page.getByText('6 prints counted.').last().waitFor();
    await page.getByRole('dialog').waitFor({ state: 'detached' });
    assert.deepEqual(printed(), { ...before, [counter]: before[counter] + 6 }, `each ${kind} is counted once`);
  }

  // The code of the first sheet is what finds its order.
  const [code] = codesOf('pick');
  const [first] = served.query(`SELECT FID FROM IC_Web2ERPOrders WHERE FUniqueCode = ${code}`);
  await page.getByRole('combobox').first().focus();
  await page.keyboard.type(code, { delay: 40 });
  await page.keyboard.press('Enter');
  await page.waitForURL(new RegExp(`order/${first.FID}$`));
  await page.getByRole('heading', { name: orders[0].FOrderID }).waitFor();

  // Orders that were printed as often as is allowed are left out, and named.
  served.make('sql', `UPDATE IC_Web2ERPOrders SET FPrintPickCount = 0 WHERE FID = ${keys[1]}`);
  const { text } = await paper(page, 'limit', `pick?keys=${keys.slice(0, 2)}`);
  await page.getByRole('status').getByText(`${orders[0].FOrderID} (2 of 2)`).waitFor();
  assert.ok(!text.includes(orders[0].FOrderID) && text.includes(orders[1].FOrderID));
}

export async function labels() {
  const page = await pageOf('ann');
  const [parcel] = served.query(`SELECT TOP 1 FID, CAST(FUniqueCode AS nvarchar(30)) AS Code, FLogisticsOrder FROM IC_Web2ERPOrders
    WHERE FUniqueCode > 0 AND FLogisticsOrder <> ''`);
  const { told } = await paper(page, 'label', `label?keys=${parcel.FID}`);
  assert.match(told, /Pages: +1\n/);
  assert.match(told, /Page size: +28[23]\.\d+ x 425\.\d+ pts/, 'the label is 100 x 150 mm');
  assert.deepEqual(codesOf('label'), [parcel.Code, parcel.FLogisticsOrder].sort(), 'both codes of the label can be read');
}
