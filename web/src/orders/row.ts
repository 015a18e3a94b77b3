// What a row of the list says, in words.
import { common } from '../words/common.js';
import { formatNumber, formatTime } from '../words/language.js';
import { valueWords } from './value_words.js';

export type Row = Record<string, string | number | null> & { readonly FID: number };

export const toBePicked = 2;
export const toBeDelivered = 6;
export const delivered = 14;

/** Whether all that is known of the order is its key. */
export function isBare(row: Row): boolean {
  return row['FTextPickStatus'] === undefined;
}

/** The order's FOrderStatus, which the list has as two marks. */
export function stateOf(row: Row): number {
  if (row['FTextSendStatus'] === 'Y') return delivered;
  return row['FTextPickStatus'] === 'Y' ? toBeDelivered : toBePicked;
}

export function textOf(row: Row, name: string): string {
  return String(row[name] ?? '');
}

/** States that the list writes out in Simplified Chinese, whatever language was asked for. */
const written: Readonly<Record<string, () => string>> = {
  未上传: () => valueWords.notUploaded,
  上传成功: () => valueWords.uploaded,
  上传失败: () => valueWords.uploadFailed,
  上传中: () => valueWords.uploading,
  待处理: () => valueWords.waiting,
  成功: () => valueWords.done,
  失败: () => valueWords.failed,
  打印中: () => valueWords.printing,
};

export function writtenState(value: string): string {
  return written[value]?.() ?? value;
}

export function isUploaded(row: Row): boolean {
  return row['FUpLoadStatus'] === '上传成功';
}

export function addressWords(value: string | number | null | undefined): string {
  const state = Number(value ?? 4);
  if (state === 1) return valueWords.served;
  if (state === 4) return valueWords.toBeChecked;
  return state === 5 ? valueWords.exempt : valueWords.notServed;
}

export function outsideWords(value: string | number | null | undefined): string {
  const states: Readonly<Record<string, string>> = {
    0: valueWords.outsideNot, 1: valueWords.outsideTaken, 2: valueWords.outsideFailed, 3: valueWords.outsideSubmitted,
  };
  return states[String(value ?? '')] ?? String(value ?? '');
}

export function yesWords(value: string | number | null | undefined): string {
  if (value === 'Y' || value === 1) return common.yes;
  return value === 'N' || !value ? '' : writtenState(String(value));
}

/** How the editor of a column shows its values. */
export const kinds = { text: 1, number: 2, date: 3, mark: 4, choice: 5 } as const;

const money = new Set([
  'FAmount', 'FDiscountFee', 'FBillDiscountFee', 'FTotalFreight', 'FFinallyAmount', 'FLogisticsCost', 'FInsuredValue',
]);
const decimals = 2;

export function formatAmount(value: string | number | null | undefined): string {
  return value === null || value === undefined || value === '' ? '' : formatNumber(Number(value), decimals);
}

/** The value of a column of the template. @param key FKey @param kind FCtlType */
export function cellText(row: Row, key: string, kind: number): string {
  if (isBare(row)) return key === 'FOrderID' ? textOf(row, key) : '';
  if (key === 'FAddressReachable') return addressWords(row[key]);
  if (key === 'FTplStatus') return outsideWords(row[key]);
  if (key === 'FWebshopID') return textOf(row, 'FWebshopName');
  if (key === 'FTextApplyForReFund') return yesWords(row['FRefundStatus']);
  if (key === 'FUpLoadStatus' || key === 'FStockBillStatus') return writtenState(textOf(row, key));
  if (money.has(key)) return formatAmount(row[key]);
  const value = row[key];
  if (kind === kinds.choice) return row[`${key}Name`] === undefined ? String(value || '') : textOf(row, `${key}Name`);
  if (kind === kinds.date) return formatTime(value === null || value === undefined ? '' : String(value));
  if (kind === kinds.mark) return yesWords(value);
  if (kind === kinds.number && typeof value === 'number') return key === 'FID' ? String(value) : formatNumber(value);
  return value === null || value === undefined ? '' : String(value);
}
