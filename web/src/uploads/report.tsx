// What is reported to the web shop about an order.
import { answerOf, door } from '../api/door.js';
import { useChoices } from '../orders/choices.js';
import { Dialog } from '../parts/dialog.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { common } from '../words/common.js';
import { words } from './words.js';

async function reportOf(order: number) {
  const body = { strFids: order };
  return (await answerOf(door.POST('/api/v1/clsGetData/GetUploadDataByFID', { body }))).result ?? [];
}

export function Report({ order, onClose }: { order: number; onClose: () => void }) {
  const report = useLoaded(String(order), () => reportOf(order));
  const choices = useChoices();
  const shopOf = (id: number | null | undefined) => (
    choices.find(({ FKind, FID }) => FKind === 'shop' && FID === id)?.FName ?? String(id ?? '')
  );
  return (
    <Dialog title={words.show} onClose={onClose} wide>
      <LoadNote of={report} />
      {report.data?.length === 0 && <p class="note warn">{words.nothingReported}</p>}
      {report.data && report.data.length > 0 && (
        <div class="short-list" tabIndex={0} role="region" aria-label={words.show}>
          <table>
            <thead>
              <tr>
                <th>{words.siteOrder}</th><th>{words.child}</th><th>{words.split}</th><th>{words.shop}</th>
                <th>{words.carrier}</th><th>{words.waybill}</th>
              </tr>
            </thead>
            <tbody>
              {report.data.map((line, index) => (
                <tr key={index}>
                  <td>{line.SiteOrderID}</td><td>{line.ChildIDs || '–'}</td>
                  <td>{line.IsSplit ? common.yes : common.no}</td><td>{shopOf(line.FWebshopID)}</td>
                  <td>{line.FLogisticsNumber || '–'}</td><td>{line.FLogisticsOrder || '–'}</td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
      <div class="row end"><button type="button" onClick={onClose}>{common.close}</button></div>
    </Dialog>
  );
}
