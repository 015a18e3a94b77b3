// The screens by the first part of their path. Each is loaded when it is first shown.
import type { ComponentType } from 'preact';
import { common } from '../words/common.js';

export interface Screen {
  /** In the list of screens; "" for one that is reached from others only. */
  readonly title: () => string;
  readonly load: () => Promise<ComponentType>;
}

export const screens: Readonly<Record<string, Screen>> = {
  orders: { title: () => common.orders, load: async () => (await import('../orders/screen.js')).OrdersScreen },
  order: { title: () => '', load: async () => (await import('../order/screen.js')).OrderScreen },
  shelf: { title: () => common.shelf, load: async () => (await import('../shelf/screen.js')).ShelfScreen },
  desk: { title: () => common.desk, load: async () => (await import('../desk/screen.js')).DeskScreen },
  ramp: { title: () => common.ramp, load: async () => (await import('../ramp/screen.js')).RampScreen },
  outside: { title: () => common.outside, load: async () => (await import('../outside/screen.js')).OutsideScreen },
  invoices: { title: () => common.invoices, load: async () => (await import('../invoices/screen.js')).InvoicesScreen },
  uploads: { title: () => common.uploads, load: async () => (await import('../uploads/screen.js')).UploadsScreen },
  print: { title: () => '', load: async () => (await import('../prints/screen.js')).PrintScreen },
};

export const firstScreen = 'orders';
