// How long people wait for the page: node measure.mjs COMMAND ORDERS. Every time is taken in the browser.
import { existsSync } from 'node:fs';
import { chromium } from 'playwright-core';
import { password, Served } from './served.mjs';

const [, , command, orders] = process.argv;
const file = `orders-${orders}.db`;
const served = new Served(command, { file, orders, fresh: !existsSync(file) });
await served.start();
const browser = await chromium.launch({ executablePath: '/usr/bin/chromium', args: ['--no-sandbox'] });
const context = await browser.newContext({ viewport: { width: 1280, height: 800 }, locale: 'en-GB' });
const page = await context.newPage();
page.setDefaultTimeout(60_000);
await page.goto(served.url);
await page.getByLabel('User').fill('ann');
await page.getByLabel('Password').fill(password);
await page.getByRole('button', { name: 'Log in' }).click();
await page.getByRole('grid').waitFor();
const state = await context.storageState();

const sorted = (times) => [...times].sort((a, b) => a - b);
const quantile = (times, part) => sorted(times)[Math.min(times.length - 1, Math.floor(times.length * part))];
const lines = [];
const tell = (work, value, wanted) => {
  lines.push([work, value, wanted]);
  console.log(`${work}: ${value} (wanted ${wanted})`);
};
const ms = (time) => `${time.toFixed(0)} ms`;

/** In the page: the time at which the list's rows can be read, and are others than before. */
const whenReadable = (before) => new Promise((done) => {
  const look = () => {
    const links = [...document.querySelectorAll('.grid-row a')];
    const first = links[0]?.textContent;
    if (first && first !== before && !document.querySelector('.grid .wait')) done(performance.now());
    else requestAnimationFrame(look);
  };
  look();
});
const firstOrder = (where) => where.locator('.grid-row a').first().textContent();

async function firstScreen() {
  const times = [];
  for (let time = 0; time < 5; ++time) {
    // A context of its own has a cache of its own.
    const cold = await browser.newContext({ viewport: { width: 1280, height: 800 }, storageState: state });
    const opened = await cold.newPage();
    await opened.goto(served.url, { waitUntil: 'commit' });
    times.push(await opened.evaluate(whenReadable, ''));
    await cold.close();
  }
  tell(`First screen of ${orders} orders, cold cache`, ms(quantile(times, 0.5)), 'at most 1000 ms');
}

async function tabs() {
  for (const tab of ['To be delivered', 'Delivered', 'Failed uploads', 'Refunds', 'Locked', 'To be picked']) {
    const before = await firstOrder(page);
    const time = await page.evaluate(async ([name, order, wait]) => {
      const link = [...document.querySelectorAll('.tabs a')].find((known) => known.textContent.startsWith(name));
      const begun = performance.now();
      link.click();
      return await (0, eval)(wait)(order) - begun;
    }, [tab, before, `(${whenReadable})`]);
    await page.waitForTimeout(1500);
    const count = (await page.locator('.tools .said').textContent()).trim();
    tell(`Next tab, ${tab} (${count})`, ms(time), 'at most 150 ms');
  }
}

async function scrolling() {
  await page.goto(`${served.url}/#/orders?tab=all`);
  await page.waitForTimeout(4000);
  const frames = await page.evaluate(() => new Promise((done) => {
    const grid = document.querySelector('.grid');
    const times = [];
    const begun = performance.now();
    let last = begun;
    const frame = (now) => {
      if (now > last) times.push(now - last);
      last = now;
      grid.scrollTop += 60;
      if (now - begun < 10_000) requestAnimationFrame(frame);
      else done(times);
    };
    requestAnimationFrame(frame);
  }));
  const slow = frames.filter((time) => time > 50).length;
  tell(`Scrolling ${orders} rows for ten seconds, ${frames.length} frames`,
    `worst ${ms(Math.max(...frames))}, ${slow} over 50 ms, median ${ms(quantile(frames, 0.5))}`, 'none over 50 ms');
}

async function scans() {
  const codes = served.query(`SELECT TOP 500 CAST(o.FUniqueCode AS nvarchar(30)) AS Code, o.FOrderID FROM IC_Web2ERPOrders o
    LEFT JOIN IC_Web2ERPOrdersEx x ON x.FID = o.FID WHERE o.FOrderStatus = 6 AND o.FUniqueCode > 0 AND
    ISNULL(x.FIsLock, 0) = 0 ORDER BY o.FID DESC`);
  await page.goto(`${served.url}/#/desk`);
  await page.locator('input.scan').waitFor();
  const times = [];
  for (const { Code: code, FOrderID: number } of codes) {
    await page.evaluate((order) => {
      window.answered = new Promise((done) => {
        let begun = 0;
        addEventListener('keydown', (event) => { if (event.key === 'Enter') begun = performance.now(); },
          { capture: true, once: false });
        const look = () => {
          if (begun && document.querySelector('.desk').textContent.includes(order)) done(performance.now() - begun);
          else requestAnimationFrame(look);
        };
        look();
      });
    }, number);
    await page.keyboard.type(code);
    await page.keyboard.press('Enter');
    times.push(await page.evaluate(() => window.answered));
    await page.keyboard.press('Escape');
  }
  tell(`Scan to answer at the packing desk, ${times.length} scans`,
    `95th percentile ${ms(quantile(times, 0.95))}, median ${ms(quantile(times, 0.5))}`, '95th percentile at most 100 ms');
}

/** Within a row: its mark, where no link is. */
const beside = { x: 20, y: 10 };

async function bulkStep() {
  const keys = served.query(`SELECT TOP 1000 o.FID FROM IC_Web2ERPOrders o LEFT JOIN IC_Web2ERPOrdersEx x ON x.FID = o.FID
    WHERE o.FOrderStatus = 2 AND ISNULL(x.FIsLock, 0) = 0 ORDER BY o.FSitePayDate, o.FID`).map(({ FID }) => FID);
  const call = (remark) => page.evaluate(async ([list, text]) => {
    const begun = performance.now();
    const answer = await fetch('/api/v1/clsSaveData/DeRemark?each=order', {
      method: 'POST', headers: { 'Content-Type': 'application/json' },
      body: JSON.stringify({ dctPara: { FID: list.join(), FDeliveryRemark: text } }),
    });
    await answer.json();
    return performance.now() - begun;
  }, [keys, remark]);
  const step = async (remark) => {
    await page.goto(`${served.url}/#/orders?tab=toBePicked`);
    await page.reload();
    await page.locator('.grid-row a').first().waitFor();
    await page.waitForTimeout(1500);
    await page.locator('.grid-row[data-row="0"]').click({ position: beside });
    await page.evaluate(() => { document.querySelector('.grid').scrollTop = 995 * 32; });
    await page.locator('.grid-row[data-row="999"]').click({ modifiers: ['Shift'], position: beside });
    await page.getByText('1,000 selected').waitFor();
    await page.getByRole('toolbar').getByRole('button', { name: 'Delivery wishes' }).click();
    const dialog = page.getByRole('dialog');
    await dialog.getByRole('textbox').fill(remark);
    await dialog.getByRole('button', { name: 'Check' }).click();
    const run = dialog.getByRole('button', { name: /^Delivery wishes: / });
    await run.waitFor();
    const time = await run.evaluate((button) => new Promise((done) => {
      const begun = performance.now();
      button.click();
      // Till it can be read; a call's time has no wait for a frame in it either.
      new MutationObserver((_, observer) => {
        if (!/1,000 orders done/.test(document.querySelector('dialog').textContent)) return;
        observer.disconnect();
        done(performance.now() - begun);
      }).observe(document.querySelector('dialog'), { subtree: true, childList: true, characterData: true });
    }));
    await dialog.getByRole('button', { name: 'Close' }).click();
    return time;
  };
  await call('0');
  const calls = [];
  const steps = [];
  for (let time = 0; time < 7; ++time) {
    calls.push(await call(`call ${time}`));
    steps.push(await step(`step ${time}`));
  }
  const [ours, bare] = [quantile(steps, 0.5), quantile(calls, 0.5)];
  tell('A step over 1,000 selected orders : the call',
    `${(ours / bare).toFixed(2)} x (${ms(ours)} : ${ms(bare)})`, 'at most 1.2 x');
}

try {
  const only = process.argv[4];
  for (const part of [firstScreen, tabs, scrolling, scans, bulkStep]) if (!only || part.name === only) await part();
  console.log('\n| work | measured | wanted |\n|---|---|---|');
  for (const line of lines) console.log(`| ${line.join(' | ')} |`);
} finally {
  await browser.close();
  await served.kill();
}
