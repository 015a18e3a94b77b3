// Bar codes and QR codes, each drawn as one path.
import JsBarcode from 'jsbarcode';
import { encode } from 'uqr';

/** White modules beside a bar code, and around a QR code; readers want them. */
const quietBars = 10;
const quietDots = 4;

interface Drawn {
  encodings?: { data: string }[];
}

/** Dark runs of a row of modules, as parts of a path. */
function runs(row: readonly boolean[], y: number, height: number): string {
  let path = '';
  for (let at = 0; at < row.length; at++) {
    if (!row[at] || row[at - 1]) continue;
    const end = row.indexOf(false, at);
    path += `M${at} ${y}h${(end < 0 ? row.length : end) - at}v${height}H${at}z`;
  }
  return path;
}

/** Code 128 with its text below. */
export function BarCode({ text }: { text: string }) {
  const drawn: Drawn = {};
  JsBarcode(drawn, text, { format: 'CODE128' });
  const bars = [...(drawn.encodings ?? []).map(({ data }) => data).join('')].map((bit) => bit === '1');
  return (
    <figure class="barcode">
      <svg viewBox={`${-quietBars} 0 ${bars.length + 2 * quietBars} 1`} preserveAspectRatio="none" role="img"
        aria-label={text} shape-rendering="crispEdges">
        <path d={runs(bars, 0, 1)} fill="currentColor" />
      </svg>
      <figcaption>{text}</figcaption>
    </figure>
  );
}

export function QrCode({ text }: { text: string }) {
  const { data, size } = encode(text, { ecc: 'M', border: 0 });
  const path = data.map((row, y) => runs(row, y, 1)).join('');
  const side = size + 2 * quietDots;
  return (
    <svg class="qrcode" viewBox={`${-quietDots} ${-quietDots} ${side} ${side}`} role="img" aria-label={text}
      shape-rendering="crispEdges">
      <path d={path} fill="currentColor" />
    </svg>
  );
}
