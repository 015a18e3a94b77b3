// What is in the parcel, in type that is read from a step away.
import type { ComponentChildren } from 'preact';
import { fill, formatNumber } from '../words/language.js';
import { kilograms, type Line, type Parcel } from './parcel.js';
import { words } from './words.js';

const remarkNames = [
  ['FBuyerMessage', 'buyerMessage'], ['FSellerMessage', 'sellerMessage'], ['FDeliveryRemark', 'deliveryRemark'],
  ['FPickRem', 'pickRemark'], ['FGiftCardText', 'giftCard'],
] as const;

function LineView({ line }: { line: Line }) {
  const notes = [
    line['FIsFree'] && words.gift,
    line['FRefundStatus'] && `${words.lineRefund}: ${line['FRefundStatus']}`,
    (line['FRowClosed'] || line['FIsRowClose']) && words.lineClosed,
    line['FEngraving'] && `${words.engraving}: ${line['FEngraving']}`,
    line['FWrapping'] && `${words.wrapping}: ${line['FWrapping']}`,
  ].filter(Boolean);
  return (
    <tr>
      <td class="number large">{formatNumber(Number(line['FQuantity']))}</td>
      <td>{line['FUnitIDName']}</td>
      <td><b>{line['FItemName']}</b> <span class="quiet">{line['FNumber']}</span></td>
      <td>{[line['FItemType'], line['FAttrName']].filter(Boolean).join(' ')}</td>
      <td>{notes.map((note) => <span key={note} class="tag">{note}</span>)}</td>
    </tr>
  );
}

function Weights({ parcel }: { parcel: Parcel }) {
  const expected = parcel.found?.expected ?? 0;
  const inWords = (weight: number) => fill(words.kilograms, { weight: kilograms(weight) });
  return (
    <dl class="facts weights">
      <div><dt>{words.expected}</dt><dd>{expected > 0 ? inWords(expected) : words.unknownWeight}</dd></div>
      <div><dt>{words.weight}</dt><dd>{parcel.weight === undefined ? '–' : inWords(parcel.weight)}</dd></div>
    </dl>
  );
}

export function ParcelView({ parcel, children }: { parcel: Parcel; children: ComponentChildren }) {
  const row: Line = parcel.found?.row ?? {};
  const facts = [
    [words.order, row['FOrderID'] ?? parcel.number], [words.consignee, row['FConsignee']],
    [words.carrier, row['FLogisticsIDName']], [words.parcels, row['FParcelQuantity']],
  ].filter(([, value]) => value);
  const remarks = remarkNames.filter(([column]) => row[column]);
  return (
    <section class={`parcel ${parcel.why ? 'stopped' : ''}`} aria-label={words.parcel}>
      <div class="head">
        <dl class="facts">
          {facts.map(([name, value]) => <div key={name}><dt>{name}</dt><dd>{value}</dd></div>)}
        </dl>
        <Weights parcel={parcel} />
      </div>
      {remarks.length > 0 && (
        <ul class="remarks">
          {remarks.map(([column, name]) => (
            <li key={column}><span class="quiet">{words[name]}</span> {row[column]}</li>
          ))}
        </ul>
      )}
      {parcel.found && (
        <div class="scrolled" tabIndex={0} role="region" aria-label={words.lines}>
          <table>
            <thead>
              <tr>
                <th class="number" colSpan={2}>{words.quantity}</th><th>{words.article}</th><th>{words.attribute}</th>
                <th><span class="hidden">{words.state}</span></th>
              </tr>
            </thead>
            <tbody>{parcel.found.lines.map((line) => <LineView key={String(line['FEntryID'])} line={line} />)}</tbody>
          </table>
        </div>
      )}
      {children}
    </section>
  );
}
