// The lines of an order.
import type { Schemas } from '../api/door.js';
import { formatAmount } from '../orders/row.js';
import { formatNumber } from '../words/language.js';
import { words } from './words.js';

export type Line = Schemas['Row'];

function text(line: Line, name: string): string {
  return String(line[name] ?? '');
}

export function Lines({ lines }: { lines: readonly Line[] }) {
  return (
    <section>
      <h2>{words.lines}</h2>
      <div class="scrolls" tabIndex={0} role="region" aria-label={words.lines}>
        <table>
          <thead>
            <tr>
              <th class="number">#</th><th>{words.article}</th><th>{words.attribute}</th>
              <th class="number">{words.quantity}</th><th>{words.unit}</th><th>{words.warehouse}</th>
              <th>{words.stockPlace}</th><th>{words.batch}</th><th class="number">{words.weight}</th>
              <th class="number">{words.amount}</th>
            </tr>
          </thead>
          <tbody>{lines.map((line) => <LineRow key={text(line, 'FEntryID')} line={line} />)}</tbody>
        </table>
      </div>
    </section>
  );
}

function LineRow({ line }: { line: Line }) {
  return (
    <tr>
      <td class="number">{text(line, 'FIndex')}</td>
      <td>
        {text(line, 'FItemName')} <span class="quiet">{text(line, 'FNumber')} {text(line, 'FItemType')}</span>
        {line['FIsFree'] === 'Y' && <span class="tag">{words.gift}</span>}
        {line['FRefundStatus'] === 'Y' && <span class="tag">{words.refund}</span>}
      </td>
      <td>{text(line, 'FAttrCodeName') || text(line, 'FAttrName')}</td>
      <td class="number">{formatNumber(Number(line['FQuantity'] ?? 0), Number(line['FQtyDecimal'] ?? 0))}</td>
      <td>{text(line, 'FUnitIDName')}</td>
      <td>{text(line, 'FStockIDName')}</td>
      <td>{text(line, 'FSPName')}</td>
      <td>{text(line, 'FBatchNo')}</td>
      <td class="number">{formatNumber(Number(line['FGrossWeight'] ?? 0))}</td>
      <td class="number">{formatAmount(Number(line['FAmount'] ?? 0))}</td>
    </tr>
  );
}
