// What holds on every screen: all of it is said in each language, fits small screens, keeps still, and works by keys.
import assert from 'node:assert/strict';
import { readdirSync, readFileSync } from 'node:fs';
import { join } from 'node:path';
import { pageOf, served, show, wrongs } from './browser.mjs';

const screens = [
  'orders', 'shelf', 'desk', 'ramp', 'uploads', 'figures?day=2026-06-30&days=30', 'outside', 'invoices', 'invoices/1', 'log',
  'settings/users', 'settings/tokens', 'settings/roles', 'settings/switches', 'console', 'console/clsSaveData/DeRemark',
  'order/75', 'print/pick?keys=75,76', 'print/note?keys=75', 'print/list?keys=75,76', 'print/label?keys=75',
];

/** Each text is there in three languages, with the same places to be filled in. */
export async function words() {
  const all = readdirSync(process.env.WEB_SOURCES, { recursive: true });
  let count = 0;
  for (const file of all.filter((name) => /(words|common)\.ts$/.test(name))) {
    const source = readFileSync(join(process.env.WEB_SOURCES, file), 'utf8');
    const [, texts] = source.match(/defineWords\((\{.*?\n\})\)/s) ?? [];
    for (const [name, text] of Object.entries(texts ? new Function(`return ${texts}`)() : {})) {
      const places = text.map((one) => [...new Set(one.match(/\{\w+\}/g))].sort().join());
      assert.ok(text.length === 3 && text.every((one) => one.trim()), `${file}: ${name} is said in three languages`);
      assert.ok(places.every((one) => one === places[0]), `${file}: ${name} has the same places in each`);
      ++count;
    }
  }
  assert.ok(count > 600, `${count} texts`);
}

/** Runs in the page: English words that are the page's own, not data's, and names that no language has. */
function english() {
  const names = /^(English|Dictionary|Idempotency|JSON|VBScript|curl|Page|Down|Home|Shift|Ctrl|Enter|.*[a-z][A-Z].*|F[A-Z]\w+)$/;
  const said = 'button, label, legend, summary, h1, h2, h3, th, a, p, dt, option';
  const data = '[lang=en], pre, td, figcaption, th[scope=row], th[scope=col], .operations b, .path, .own > span';
  const all = (what) => [...document.querySelectorAll(what)].filter((one) => one.checkVisibility() && !one.closest(data));
  const shown = all(said).flatMap(({ childNodes }) => [...childNodes].map((node) => node.nodeType === 3 ? node.data : ''));
  const told = ['aria-label', 'placeholder'].flatMap((name) => all(`[${name}]`).map((one) => one.getAttribute(name)));
  return [...shown, ...told].filter((text) => (text.match(/[A-Za-z]{4,}\w*/g) ?? []).some((word) => !names.test(word)));
}

/** Runs in the page: elements that move. */
function moving() {
  const slow = (times) => times.split(',').some((time) => parseFloat(time) > 0.01);
  return [...document.querySelectorAll('*')].filter((element) => {
    const { transitionDuration, animationName, animationDuration } = getComputedStyle(element);
    return slow(transitionDuration) || (animationName !== 'none' && slow(animationDuration));
  }).map(({ tagName, className }) => `${tagName} ${className}`);
}

export async function chinese() {
  const page = await pageOf('ann', { reducedMotion: 'reduce' });
  await page.evaluate(() => localStorage.setItem('tessarlorn.language', 'zh-Hans'));
  await page.reload();
  await page.getByRole('navigation', { name: '主导航' }).waitFor();
  for (const screen of screens) {
    await show(page, screen);
    await page.locator('main h1').first().waitFor({ state: 'attached' });
    await page.waitForTimeout(150);
    await page.waitForFunction(() => !document.body.innerText.includes('正在加载'));
    for (const text of new Set(await page.evaluate(english))) wrongs.push(`${screen}: not in Chinese: ${text}`);
    for (const element of new Set(await page.evaluate(moving))) wrongs.push(`${screen}: moves: ${element}`);
    for (const [width, height] of [[640, 400], [360, 740], [1280, 800]]) {
      await page.setViewportSize({ width, height });
      const wide = await page.evaluate(() => document.documentElement.scrollWidth);
      if (wide > width) wrongs.push(`${screen}: ${wide} pixels wide at ${width}`);
    }
  }
  await page.screenshot({ path: 'chinese.png' });
}

const dialogs = [
  ['orders', 'Filters'], ['orders', 'Views'], ['orders', 'Columns'], ['orders', 'Show the keys'], ['order/75', 'Logistics cost'],
  ['settings/users', 'Add a user'], ['settings/users', 'New password: bob'], ['settings/tokens', 'Make a token'],
  ['settings/roles', 'Make a role'],
];

export async function keys() {
  const page = await pageOf('ann');
  await page.getByRole('grid').getByRole('row').nth(1).waitFor();
  const here = () => page.evaluate(() => document.activeElement.dataset.row);
  for (let presses = 0; await here() === undefined && presses < 60; ++presses) await page.keyboard.press('Tab');
  assert.equal(await here(), '0', 'Tab comes to the first row');
  await page.keyboard.press('?');
  await page.getByRole('dialog', { name: 'Keys' }).waitFor();
  await page.keyboard.press('Escape');
  await page.getByRole('dialog').waitFor({ state: 'detached' });
  for (const [screen, name] of dialogs) {
    await show(page, screen);
    const button = page.getByRole('button', { name, exact: true });
    await button.and(page.locator(':enabled')).press('Enter');
    await page.getByRole('dialog').waitFor();
    const inside = await page.evaluate(() => document.activeElement.closest('dialog') !== null);
    assert.ok(inside, `${name}: the dialog has the focus`);
    await page.keyboard.press('Escape');
    await page.getByRole('dialog').waitFor({ state: 'detached' });
    assert.ok(await button.evaluate((one) => one === document.activeElement), `${name}: the focus is back`);
  }
}
