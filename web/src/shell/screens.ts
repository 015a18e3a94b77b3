// The screens by the first part of their path. Each is loaded when it is first shown.
import type { ComponentType } from 'preact';
import { common } from '../words/common.js';

/** Where a screen stands in the list of screens; one that is reached from others only stands nowhere. */
export type Place = 'main' | 'more' | 'nowhere';

export interface Screen {
  readonly title: () => string;
  readonly place: Place;
  readonly load: () => Promise<ComponentType>;
  readonly forAdministrators?: boolean;
}

const screen = (place: Place, title: () => string, load: Screen['load']): Screen => ({ place, title, load });

export const screens: Readonly<Record<string, Screen>> = {
  orders: screen('main', () => common.orders, async () => (await import('../orders/screen.js')).OrdersScreen),
  shelf: screen('main', () => common.shelf, async () => (await import('../shelf/screen.js')).ShelfScreen),
  desk: screen('main', () => common.desk, async () => (await import('../desk/screen.js')).DeskScreen),
  ramp: screen('main', () => common.ramp, async () => (await import('../ramp/screen.js')).RampScreen),
  uploads: screen('main', () => common.uploads, async () => (await import('../uploads/screen.js')).UploadsScreen),
  figures: screen('main', () => common.figures, async () => (await import('../figures/screen.js')).FiguresScreen),
  outside: screen('more', () => common.outside, async () => (await import('../outside/screen.js')).OutsideScreen),
  invoices: screen('more', () => common.invoices, async () => (await import('../invoices/screen.js')).InvoicesScreen),
  log: screen('more', () => common.log, async () => (await import('../log/screen.js')).LogScreen),
  settings: {
    ...screen('more', () => common.settings, async () => (await import('../settings/screen.js')).SettingsScreen),
    forAdministrators: true,
  },
  console: screen('more', () => common.console, async () => (await import('../console/screen.js')).ConsoleScreen),
  order: screen('nowhere', () => '', async () => (await import('../order/screen.js')).OrderScreen),
  print: screen('nowhere', () => '', async () => (await import('../prints/screen.js')).PrintScreen),
};

export const firstScreen = 'orders';
