// Labels of 100 by 150 mm, one for each parcel of an order.
import type { Row } from '../scan/jobs.js';
import { fill } from '../words/language.js';
import { BarCode, QrCode } from './codes.js';
import type { Material } from './data.js';
import { words } from './words.js';

function Label({ order, at, all }: { order: Row; at: number; all: number }) {
  const region = [order['FDeliveryProvinceName'], order['FDeliveryCityName'], order['FDeliveryDistrictName']];
  const person = [order['FConsignee'], order['FMobile'], order['FTelephone']];
  const waybill = String(order['FLogisticsOrder'] ?? '');
  const lot = [order['FLotNumber'], order['FSerialNumber']].filter(Boolean).join(' / ');
  return (
    <article class="label">
      <header>
        <div>
          <p class="carrier">{order['FLogisticsIDName'] || words.noCarrier}</p>
          <p>{words.waybill}<br /><b>{waybill || words.noWaybill}</b></p>
          {all > 1 && <p><b>{fill(words.parcelOf, { at, all })}</b></p>}
        </div>
        {waybill && <QrCode text={waybill} />}
      </header>
      <section>
        <p class="consignee">{person.filter(Boolean).join(' ')}</p>
        <p>{[...new Set(region)].filter(Boolean).join(' ')}</p>
        <p>{order['FDeliveryAddress']} {order['FZipCode']}</p>
      </section>
      <section>
        <p>{words.shop} <b>{order['FWebshopName']}</b></p>
        <p>{words.order} <b>{order['FOrderID']}</b></p>
        {lot && <p>{words.lot} <b>{lot}</b></p>}
        {order['FDeliveryRemark'] && <p>{words.remark} <b>{order['FDeliveryRemark']}</b></p>}
      </section>
      <BarCode text={String(order['FUniqueCode'] || order['FOrderID'])} />
    </article>
  );
}

export function Labels({ material }: { material: Material }) {
  return (
    <>
      {material.rows.flatMap((order) => {
        const all = Math.max(1, Number(order['FParcelQuantity'] ?? 1));
        return Array.from({ length: all }, (_, index) => (
          <Label key={`${order.FID}-${index}`} order={order} at={index + 1} all={all} />
        ));
      })}
    </>
  );
}
