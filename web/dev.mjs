// Serves the page while one works on it, rebuilt at each load: node dev.mjs SERVER [PORT]. What is not the page's goes to
// SERVER, as http://127.0.0.1:8080. Types are not checked; build.mjs does that.
import { createReadStream, existsSync, mkdtempSync, readFileSync } from 'node:fs';
import { createServer, request } from 'node:http';
import { tmpdir } from 'node:os';
import { dirname, join, extname } from 'node:path';
import { fileURLToPath } from 'node:url';
import { context } from 'esbuild';

const [, , server = 'http://127.0.0.1:8080', port = '8090'] = process.argv;
const here = dirname(fileURLToPath(import.meta.url));
const folder = mkdtempSync(join(tmpdir(), 'page-'));
const made = await context({
  entryPoints: { page: join(here, 'src/main.tsx') },
  outdir: folder, bundle: true, splitting: true, format: 'esm', target: 'es2022', sourcemap: 'inline',
  jsx: 'automatic', jsxImportSource: 'preact',
});
const types = { '.js': 'text/javascript', '.css': 'text/css' };

createServer(async (asked, answer) => {
  const path = new URL(asked.url, server).pathname;
  const file = join(folder, path);
  if (path === '/') {
    await made.rebuild().catch(() => {});
    answer.writeHead(200, { 'Content-Type': 'text/html; charset=utf-8' });
    answer.end(readFileSync(join(here, 'src/index.html')));
  } else if (types[extname(path)] && existsSync(file)) {
    answer.writeHead(200, { 'Content-Type': types[extname(path)] });
    createReadStream(file).pipe(answer);
  } else {
    const passed = request(new URL(asked.url, server), { method: asked.method, headers: asked.headers }, (got) => {
      answer.writeHead(got.statusCode, got.headers);
      got.pipe(answer);
    });
    passed.on('error', () => answer.destroy());
    asked.pipe(passed);
  }
}).listen(Number(port), '127.0.0.1', () => console.log(`the page is at http://127.0.0.1:${port}, its server at ${server}`));
