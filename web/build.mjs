// Builds the page: node build.mjs OPENAPI OUTPUT. Types come from the description of the operations, OPENAPI. OUTPUT gets
// index.html and the scripts and styles that it names by their contents' hashes.
import { execFileSync } from 'node:child_process';
import { mkdirSync, readdirSync, readFileSync, rmSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';
import { build } from 'esbuild';

const [, , openapi, output] = process.argv;
if (!openapi || !output) {
  console.error('usage: node build.mjs OPENAPI OUTPUT');
  process.exit(2);
}
const here = dirname(fileURLToPath(import.meta.url));
const tool = (name, ...words) => execFileSync(join(here, 'node_modules/.bin', name), words, { stdio: 'inherit', cwd: here });

tool('openapi-typescript', openapi, '--default-non-nullable=false', '-o', join(here, 'src/api/schema.d.ts'));
tool('tsc', '--noEmit');

rmSync(output, { recursive: true, force: true });
mkdirSync(output, { recursive: true });
const { metafile } = await build({
  entryPoints: { page: join(here, 'src/main.tsx') },
  outdir: output,
  bundle: true,
  splitting: true,
  format: 'esm',
  target: 'es2022',
  minify: true,
  metafile: true,
  entryNames: '[name]-[hash]',
  chunkNames: '[name]-[hash]',
  assetNames: '[name]-[hash]',
  jsx: 'automatic',
  jsxImportSource: 'preact',
  legalComments: 'none',
});
// The page's own style sheet has those of all screens.
for (const name of readdirSync(output)) if (/^screen-.*\.css$/.test(name)) rmSync(join(output, name));
const made = Object.keys(metafile.outputs).map((name) => name.split('/').at(-1));
const entry = (suffix) => made.find((name) => name.startsWith('page-') && name.endsWith(suffix));
const html = readFileSync(join(here, 'src/index.html'), 'utf8')
  .replace('page.css', entry('.css'))
  .replace('page.js', entry('.js'));
writeFileSync(join(output, 'index.html'), html);
