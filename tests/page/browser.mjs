// What all parts share: the served database, users at their pages, and what they do on every screen.
import { readFileSync } from 'node:fs';
import { chromium } from 'playwright-core';
import { password, Served } from './served.mjs';

export const served = new Served(process.argv[2]);
await served.start();
export const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
/** What should not have happened, found on the way. */
export const wrongs = [];

/** A page of a user of the door, logged in. */
export async function pageOf(user, options = {}) {
  const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: 'en-GB', ...options });
  const page = await context.newPage();
  page.setDefaultTimeout(30_000);
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

export const tab = (page, name) => page.getByRole('link', { name: new RegExp(`^${name}`) });
/** Counts come after the rows. */
export async function countOf(page, name) {
  await tab(page, name).getByText(/\d/).first().waitFor();
  return Number((await tab(page, name).innerText()).replace(/\D/g, ''));
}

export const show = (page, path) => page.goto(`${served.url}/#/${path}`);

/** The file that a button has the browser save. */
export async function saved(page, button) {
  const [file] = await Promise.all([page.waitForEvent('download'), page.getByRole('button', { name: button }).click()]);
  return readFileSync(await file.path(), 'utf8');
}

/** Orders to be picked (2) or to be delivered (6) that nothing holds back: neither locked nor refunded, nor under way. */
export function sendable(count, more = '1 = 1', state = 6) {
  const found = served.query(`SELECT FID, FOrderID FROM IC_Web2ERPOrders o WHERE FOrderStatus = ${state} AND FUniqueCode > 0
    AND ${more} AND FTransactionStatus <> 38195 AND FCheckStatus = 1
    AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEx x WHERE x.FID = o.FID AND x.FIsLock <> 0)
    AND NOT EXISTS (SELECT 1 FROM IC_StockBillOrdersStatus s WHERE s.FID = o.FID)
    AND NOT EXISTS (SELECT 1 FROM IC_Web2ERPOrdersEntry e WHERE e.FID = o.FID AND (e.FRefundStatus = 1 OR e.FRowClosed = 1
      OR e.FStatus LIKE 'TRADE_CLOSED%'))`).slice(0, count);
  if (found.length < count) throw new Error(`the sample data have ${found.length} of ${count} orders`);
  return found;
}

/** What a scanner does: types fast, and ends with Enter. */
export async function scan(page, code) {
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
export async function look(page, name) {
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
export async function step(page, name, fillIn = async () => {}) {
  await page.getByRole('toolbar').getByRole('button', { name, exact: true }).click();
  const dialog = page.getByRole('dialog');
  await fillIn(dialog);
  await dialog.getByRole('button', { name: new RegExp(`^${name}: `) }).click();
  await dialog.getByText(/orders? done/).waitFor();
  const said = await dialog.getByText(/orders? done/).innerText();
  await dialog.getByRole('button', { name: 'Close' }).click();
  return said;
}
