// People at work on sample orders, at one server: node day.mjs COMMAND [PART].
import assert from 'node:assert/strict';
import { browser, served, wrongs } from './browser.mjs';
import { chinese, keys, words } from './everybody.mjs';
import { figures, invoices, log, operations, outside, ramp, settings, uploads } from './office.mjs';
import { packersMorning, shelfRound } from './packer.mjs';
import { labels, papers } from './prints.mjs';
import { supervisorsDay } from './supervisor.mjs';
import { conflict, failures, lapsedLogin } from './trouble.mjs';

const parts = [
  supervisorsDay, packersMorning, shelfRound, labels, papers, ramp, outside, invoices, uploads, figures, log, settings,
  operations, words, chinese, keys, conflict, lapsedLogin, failures,
];
const wanted = process.argv[3];

try {
  for (const part of parts.filter(({ name }) => !wanted || name === wanted)) {
    const began = Date.now();
    await part();
    for (const context of browser.contexts()) await context.close();
    console.log(`${part.name}: done in ${((Date.now() - began) / 1000).toFixed(0)} s`);
  }
  assert.deepEqual(wrongs, [], 'nothing went wrong on the way');
} finally {
  await browser.close();
  await served.kill();
}
