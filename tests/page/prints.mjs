// What is printed: read as paper, and as people and scanners read it.
import assert from 'node:assert/strict';
import { execFileSync } from 'node:child_process';
import { writeFileSync } from 'node:fs';
import { look, pageOf, served } from './browser.mjs';

export async function prints() {
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
