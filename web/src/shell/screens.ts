// The screens by the first part of their path. Each is loaded when it is first shown.
import type { ComponentType } from 'preact';
import type { OperationName } from '../api/door.js';
import { common } from '../words/common.js';

/** Where a screen stands in the list of screens; one that is reached from others only stands nowhere. */
export type Place = 'main' | 'more' | 'nowhere';

export interface Screen {
  readonly title: () => string;
  readonly place: Place;
  readonly load: () => Promise<ComponentType>;
  readonly forAdministrators?: boolean;
  /** What is done there: it is not listed for people who may not call all of it. */
  readonly operations?: readonly OperationName[];
}

const screen = (place: Place, title: () => string, load: Screen['load']): Screen => ({ place, title, load });
const listed = (shown: Screen, ...operations: OperationName[]): Screen => ({ ...shown, operations });

export const screens: Readonly<Record<string, Screen>> = {
  orders: screen('main', () => common.orders, async () => (await import('../orders/screen.js')).OrdersScreen),
  shelf: listed(
    screen('main', () => common.shelf, async () => (await import('../shelf/screen.js')).ShelfScreen),
    'ConfirmBill',
  ),
  desk: listed(
    screen('main', () => common.desk, async () => (await import('../desk/screen.js')).DeskScreen),
    'MarkPickingGoodsStatus', 'SaveLogWeight',
  ),
  ramp: listed(
    screen('main', () => common.ramp, async () => (await import('../ramp/screen.js')).RampScreen),
    'SetUpLogisticsNumberAndWeight',
  ),
  uploads: listed(
    screen('main', () => common.uploads, async () => (await import('../uploads/screen.js')).UploadsScreen),
    'UploadStatus',
  ),
  figures: screen('main', () => common.figures, async () => (await import('../figures/screen.js')).FiguresScreen),
  outside: listed(
    screen('more', () => common.outside, async () => (await import('../outside/screen.js')).OutsideScreen),
    'SubMitTplOrderTask',
  ),
  invoices: listed(
    screen('more', () => common.invoices, async () => (await import('../invoices/screen.js')).InvoicesScreen),
    'UpdateCostInvoiceStatus',
  ),
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
