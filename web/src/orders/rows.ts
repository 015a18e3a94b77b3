// Rows of orders, asked for in pages as they come into view, and kept.
import { signal } from '@preact/signals';
import { DoorError } from '../api/door.js';
import { askRows } from '../api/workbench.js';
import { sayError } from '../parts/toasts.js';
import type { Row } from './row.js';

const page = 50;
const retryAfter = 3000;

export class Rows {
  /** Counts up when rows have come. */
  readonly version = signal(0);
  private readonly rows = new Map<number, Row>();
  private readonly asked = new Set<number>();

  of(key: number): Row | undefined {
    return this.rows.get(key);
  }

  /** Asks for the pages from one place of the list to another. Done when the answers to this are here. */
  async need(keys: readonly number[], first: number, last: number): Promise<void> {
    const loads: Promise<void>[] = [];
    for (let start = first - (first % page); start <= last && start < keys.length; start += page) {
      const missing = keys.slice(start, start + page).filter((key) => !this.rows.has(key) && !this.asked.has(key));
      if (missing.length) loads.push(this.load(missing));
    }
    await Promise.all(loads);
  }

  /** Asks again for those of the orders that are known. */
  refresh(keys: readonly number[]): void {
    const known = keys.filter((key) => this.rows.has(key));
    for (let start = 0; start < known.length; start += page) void this.load(known.slice(start, start + page));
  }

  private async load(keys: readonly number[]): Promise<void> {
    keys.forEach((key) => this.asked.add(key));
    try {
      const found = new Map((await askRows(keys)).map((row) => [row.FID, row]));
      // An order that is no longer there, or not for this user, is shown by its key.
      for (const key of keys) this.rows.set(key, found.get(key) ?? { FID: key, FOrderID: String(key) });
      this.version.value += 1;
    } catch (error) {
      if (error instanceof DoorError && error.passing) setTimeout(() => void this.load(keys), retryAfter);
      else sayError(error);
    } finally {
      keys.forEach((key) => this.asked.delete(key));
    }
  }
}
