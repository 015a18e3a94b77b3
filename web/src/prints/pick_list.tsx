// Pick lists: a sheet for each order, or one for all that their orders need of each item.
import { groupBy } from '../scan/data.js';
import { formatNumber } from '../words/language.js';
import { BarCode } from './codes.js';
import type { Material, PickRow } from './data.js';
import { Facts, today } from './sheet.js';
import { words } from './words.js';

function placeOf(row: PickRow): string {
  return [row.FStockName, row.FSPNumber ?? row.FSPName].filter(Boolean).join(' ');
}

function articleOf(row: PickRow) {
  return (
    <>
      <b>{row.FItemName}</b> {row.FNumber} {row.FIsFree ? `(${words.gift})` : ''}
      <div class="small">{[row.FBarCode, row.FMealName].filter(Boolean).join(' · ')}</div>
    </>
  );
}

function PickTable({ rows, collected }: { rows: readonly PickRow[]; collected: boolean }) {
  return (
    <table>
      <thead>
        <tr>
          <th>{words.place}</th><th>{words.article}</th><th>{words.attribute}</th>
          <th class="number">{words.quantity}</th><th>{words.unit}</th><th>{words.batch}</th>
          {collected && <th>{words.serials}</th>}
          <th>{words.done}</th>
        </tr>
      </thead>
      <tbody>
        {rows.map((row, index) => (
          <tr key={index}>
            <td>{placeOf(row)}</td><td>{articleOf(row)}</td>
            <td>{[row.FModel, row.FAttrName].filter(Boolean).join(' ')}</td>
            <td class="number"><b>{formatNumber(Number(row.FQuantity))}</b></td>
            <td>{row.FUnitName}</td><td>{row.FBatchNo}</td>
            {collected && <td>{row.FSerialNumbers?.replaceAll(',', ', ')}</td>}
            <td><span class="box" /></td>
          </tr>
        ))}
      </tbody>
    </table>
  );
}

function OrderList({ rows }: { rows: readonly PickRow[] }) {
  const head = rows[0]!;
  const remarks = [head.FPickRem, head.FSellerMessage, head.FBuyerMessage].filter(Boolean);
  return (
    <article class="sheet">
      <header>
        <div>
          <h2>{words.pick} {head.FOrderID}</h2>
          <Facts facts={[
            [words.lot, head.FLotNumber], [words.serial, head.FSerialNumber], [words.shop, head.FWebShopName],
            [words.consignee, head.FConsignee], [words.carrier, head.FLogisticsName],
          ]} />
        </div>
        <BarCode text={String(head.FUniqueCode || head.FOrderID)} />
      </header>
      {remarks.map((remark) => <p key={remark} class="remark">{words.remark}: {remark}</p>)}
      <PickTable rows={rows} collected={false} />
    </article>
  );
}

export function PickLists({ material }: { material: Material }) {
  const byOrder = groupBy(material.pick, ({ FID }) => FID ?? 0);
  const keys = material.keys.filter((key) => byOrder.has(key));
  return <>{keys.map((key) => <OrderList key={key} rows={byOrder.get(key)!} />)}</>;
}

export function CollectedList({ material }: { material: Material }) {
  const lots = [...new Set(material.rows.map((row) => row['FLotNumber']).filter(Boolean))].join(', ');
  if (!material.collected.length) return null;
  return (
    <article class="sheet">
      <header>
        <div>
          <h2>{words.collected} {lots}</h2>
          <Facts facts={[[words.orders, formatNumber(material.keys.length)], [words.day, today()]]} />
        </div>
        {lots && !lots.includes(',') && <BarCode text={lots} />}
      </header>
      <PickTable rows={material.collected} collected />
    </article>
  );
}
