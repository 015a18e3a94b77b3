// What the head of an order says.
import { columnWords } from '../orders/column_words.js';
import {
  addressWords, cellText, isUploaded, kinds, outsideWords, textOf, writtenState, yesWords, type Row,
} from '../orders/row.js';
import { common } from '../words/common.js';
import { words } from './words.js';

type Name = keyof typeof columnWords;

/** How a value is shown; most are texts. */
const shapes: Partial<Record<Name, number>> = {
  FOrderDate: kinds.date, FSitePayDate: kinds.date, FWebshopID: kinds.choice, FLogisticsID: kinds.choice,
  FShippingType: kinds.choice, FTransactionStatus: kinds.choice, FEmpID: kinds.choice, FLogisticsState: kinds.choice,
  FWeight: kinds.number, FParcelQuantity: kinds.number,
};

const groups: readonly { readonly title: keyof typeof words; readonly names: readonly Name[] }[] = [
  {
    title: 'numbers',
    names: [
      'FOrderID', 'FSiteOrderID', 'FUniqueCode', 'FLotNumber', 'FSerialNumber', 'FOrderType', 'FTransactionStatus',
    ],
  },
  {
    title: 'buyer',
    names: ['FWebshopID', 'FBuyerNick', 'FBuyerName', 'FOrderDate', 'FSitePayDate', 'FBuyerPayMode', 'FEmpID'],
  },
  {
    title: 'amounts',
    names: [
      'FCurrencyID', 'FAmount', 'FDiscountFee', 'FBillDiscountFee', 'FTotalFreight', 'FFinallyAmount',
      'FLogisticsCost', 'FInsuredValue',
    ],
  },
  {
    title: 'remarks',
    names: ['FBuyerMessage', 'FSellerMessage', 'FPickRem', 'FDeliveryRemark', 'FShippingRem', 'FLockReason'],
  },
];

function Facts({ facts }: { facts: readonly (readonly [caption: string, text: string])[] }) {
  return (
    <dl>
      {facts.map(([caption, text]) => (
        <div key={caption}><dt>{caption}</dt><dd>{text || '–'}</dd></div>
      ))}
    </dl>
  );
}

function addressOf(row: Row): string {
  const text = (name: string) => textOf(row, name);
  const areas = new Set(['FDeliveryProvinceName', 'FDeliveryCityName', 'FDeliveryDistrictName'].map(text));
  return [...areas, text('FDeliveryAddress'), text('FZipCode')].filter(Boolean).join(' ');
}

export function Head({ row }: { row: Row }) {
  const of = (name: Name) => [columnWords[name], cellText(row, name, shapes[name] ?? kinds.text)] as const;
  const yesNo = (name: Name, value = row[name]) => [columnWords[name], yesWords(value) || common.no] as const;
  const reason = textOf(row, 'FReasonsForFailure');
  const outside = textOf(row, 'FTplFail');
  const telephones = [textOf(row, 'FMobile'), textOf(row, 'FTelephone')].filter(Boolean).join(', ');
  return (
    <div class="groups">
      <section>
        <h2>{words.delivery}</h2>
        <Facts facts={[
          of('FConsignee'), [columnWords.FMobile, telephones], [columnWords.FDeliveryAddress, addressOf(row)],
          [columnWords.FAddressReachable, addressWords(row['FAddressReachable'])],
          of('FDeliveryTime'), of('FLogisticsID'), of('FLogisticsOrder'), of('FMailNo'), of('FShippingType'),
          of('FParcelQuantity'), of('FWeight'), yesNo('FWeighttingStatus'), of('FLogisticsState'),
        ]} />
      </section>
      {groups.map(({ title, names }) => (
        <section key={title}><h2>{words[title]}</h2><Facts facts={names.map(of)} /></section>
      ))}
      <section>
        <h2>{words.prints}</h2>
        <Facts facts={[
          yesNo('FIsPrintPick'), yesNo('FIsPrintExpress'), yesNo('FIsPrintSend'),
          [columnWords.FPrintExpressCount, textOf(row, 'FPrintExpressCount')],
        ]} />
      </section>
      <section>
        <h2>{words.rest}</h2>
        <Facts facts={[
          [columnWords.FTplStatus, outsideWords(row['FTplStatus'])], of('FTpName'), of('FTplOrderID'),
          yesNo('FCostInvoice'), yesNo('FInvoiceStatus'), of('FInvoiceName'),
          [columnWords.FUpLoadStatus, writtenState(textOf(row, 'FUpLoadStatus'))],
          [columnWords.FStockBillStatus, writtenState(textOf(row, 'FStockBillStatus'))],
        ]} />
        {outside && <p class="note bad">{columnWords.FTplFail}: {outside}</p>}
        {reason && !isUploaded(row) && <p class="note bad">{columnWords.FReasonsForFailure}: {reason}</p>}
      </section>
    </div>
  );
}
