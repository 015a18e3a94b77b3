// Delivery notes for buyers, and the list that the carrier signs.
import { groupBy } from '../scan/data.js';
import type { Row } from '../scan/jobs.js';
import { formatNumber, formatTime } from '../words/language.js';
import { BarCode } from './codes.js';
import type { Material, NoteRow } from './data.js';
import { Facts, today } from './sheet.js';
import { words } from './words.js';

const money = (value: number | string | null | undefined) => formatNumber(Number(value ?? 0), 2);

function Note({ lines, total, order }: { lines: readonly NoteRow[]; total: number; order: Row }) {
  const head = lines[0]!;
  const region = [head.FDeliveryProvince, head.FDeliveryCity, head.FDeliveryDistrict];
  const address = [...new Set(region), head.FDeliveryAddress, head.FZipCode];
  return (
    <article class="sheet">
      <header>
        <div>
          <h2>{words.note} {order['FOrderID']}</h2>
          <Facts facts={[
            [words.shop, order['FWebshopName']], [words.siteOrder, head.FSiteOrderID], [words.buyer, head.FBuyerName],
            [words.consignee, head.FConsignee],
            [words.phone, [head.FMobile, head.FTelephone].filter(Boolean).join(', ')],
            [words.address, address.filter(Boolean).join(' ')], [words.waybill, order['FLogisticsOrder']],
            [words.day, head.FSendDate ? formatTime(head.FSendDate, 'date') : today()],
          ]} />
        </div>
        <BarCode text={String(head.FUniqueCode)} />
      </header>
      <table>
        <thead>
          <tr>
            <th>{words.article}</th><th>{words.attribute}</th>
            <th class="number">{words.quantity}</th><th>{words.unit}</th><th class="number">{words.price}</th>
            <th class="number">{words.discount}</th><th class="number">{words.amount}</th>
          </tr>
        </thead>
        <tbody>
          {lines.map((line) => (
            <tr key={line.FIndex}>
              <td>{line.FName}</td><td>{line.FModel}</td><td class="number">{formatNumber(Number(line.FQuantity))}</td>
              <td>{line.FUnitName}</td><td class="number">{money(line.FPrice)}</td>
              <td class="number">{money(line.FDiscountFee)}</td><td class="number">{money(line.FAmount)}</td>
            </tr>
          ))}
          <tr class="total"><td colSpan={6}>{words.total}</td><td class="number">{money(total)}</td></tr>
        </tbody>
      </table>
    </article>
  );
}

export function DeliveryNotes({ material }: { material: Material }) {
  const byOrder = groupBy(material.notes, ({ FID }) => FID ?? 0);
  return (
    <>
      {material.rows.filter(({ FID }) => byOrder.has(FID)).map((row) => (
        <Note key={row.FID} order={row} lines={byOrder.get(row.FID)!} total={material.totals.get(row.FID) ?? 0} />
      ))}
    </>
  );
}

const parcelsOf = (row: Row) => Number(row['FParcelQuantity'] ?? 1);
const weightOf = (row: Row) => Number(row['FWeight'] ?? 0);

function regionOf(row: Row): string {
  return [...new Set([row['FDeliveryProvinceName'], row['FDeliveryCityName']])].filter(Boolean).join(' ');
}

function CarrierList({ carrier, rows }: { carrier: string; rows: readonly Row[] }) {
  const sum = (of: (row: Row) => number) => rows.reduce((all, row) => all + of(row), 0);
  return (
    <article class="sheet">
      <header>
        <div>
          <h2>{words.list}: {carrier}</h2>
          <Facts facts={[[words.day, today()], [words.orders, formatNumber(rows.length)]]} />
        </div>
      </header>
      <table>
        <thead>
          <tr>
            <th class="number">№</th><th>{words.waybill}</th><th>{words.order}</th><th>{words.consignee}</th>
            <th>{words.region}</th><th class="number">{words.parcels}</th><th class="number">{words.weight}</th>
          </tr>
        </thead>
        <tbody>
          {rows.map((row, index) => (
            <tr key={row.FID}>
              <td class="number">{index + 1}</td><td>{row['FLogisticsOrder'] || words.noWaybill}</td>
              <td>{row['FOrderID']}</td><td>{row['FConsignee']}</td><td>{regionOf(row)}</td>
              <td class="number">{parcelsOf(row)}</td><td class="number">{formatNumber(weightOf(row), 3)}</td>
            </tr>
          ))}
          <tr class="total">
            <td colSpan={5}>{words.total}</td>
            <td class="number">{formatNumber(sum(parcelsOf))}</td>
            <td class="number">{formatNumber(sum(weightOf), 3)}</td>
          </tr>
        </tbody>
      </table>
      <div class="signatures"><span>{words.handedOver}</span><span>{words.takenOver}</span></div>
    </article>
  );
}

/** A list for each carrier. */
export function DeliveryLists({ material }: { material: Material }) {
  const carriers = groupBy(material.rows, (row) => String(row['FLogisticsIDName'] || words.noCarrier));
  return <>{[...carriers].map(([carrier, rows]) => <CarrierList key={carrier} carrier={carrier} rows={rows} />)}</>;
}
