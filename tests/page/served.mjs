// A served database with sample orders, which can be killed and comes back at the same address.
import { execFileSync, spawn } from 'node:child_process';

export const password = 's3cret-pass';
const users = { ann: 'administrator', bob: 'administrator', sue: 'supervisor', pia: 'packer', dan: 'dispatcher' };

export class Served {
  constructor(command, { file = 'orders.db', orders = 400, fresh = true } = {}) {
    this.command = command;
    this.address = '127.0.0.1:0';
    const environment = { TESSARLORN_DSN: `Embedded=${file};Synchronous=Normal` };
    this.options = { env: { ...process.env, ...environment }, stdio: ['pipe', 'pipe', 'ignore'] };
    if (!fresh) return;
    this.make('init');
    this.make('seed', '--orders', String(orders), '--random-seed', '5');
    this.make('sql', 'UPDATE IC_WebShopAccessData SET FIsAccess = 1 WHERE FUserID = 16394');
    for (const [user, role] of Object.entries(users)) {
      const words = ['user', 'add', user, '--erp-user', '16394', '--role', role, '--language', 'EN'];
      execFileSync(command, words, { ...this.options, input: password });
    }
  }

  make(...words) {
    return execFileSync(this.command, words, this.options).toString();
  }

  /** The rows of a query. */
  query(sql) {
    return JSON.parse(this.make('sql', '--json', sql));
  }

  async start() {
    this.process = spawn(this.command, ['serve', '--http', this.address], this.options);
    const line = await new Promise((done) => this.process.stdout.once('data', (data) => done(String(data))));
    this.url = line.trim().split(' ').at(-1);
    this.address = this.url.replace('http://', '');
  }

  async kill() {
    const gone = new Promise((done) => this.process.once('exit', done));
    this.process.kill('SIGKILL');
    await gone;
  }
}
