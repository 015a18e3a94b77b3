// The way of an order from picking to the upload, with who took each step and when.
import { delivered, isUploaded, stateOf, textOf, toBeDelivered, toBePicked, type Row } from '../orders/row.js';
import { valueWords } from '../orders/value_words.js';
import { formatTime } from '../words/language.js';
import { words } from './words.js';

interface Station {
  readonly title: string;
  readonly reached: boolean;
  readonly who: string;
  readonly when: string;
}

function stationsOf(row: Row): Station[] {
  const state = stateOf(row);
  const station = (title: string, reached: boolean, who: string, when: string): Station => ({
    title, reached, who: reached && who ? textOf(row, who) : '', when: reached ? formatTime(textOf(row, when)) : '',
  });
  return [
    station(valueWords.toBePicked, state >= toBePicked, 'FChkManName', 'FChkDate'),
    station(valueWords.toBeDelivered, state >= toBeDelivered, 'FPickManName', 'FPickDate'),
    station(valueWords.delivered, state >= delivered, 'FShippingManName', 'FSendDate'),
    station(valueWords.uploaded, isUploaded(row), '', 'FOnlineSendDate'),
  ];
}

export function Path({ row }: { row: Row }) {
  const stations = stationsOf(row);
  const now = stations.map(({ reached }) => reached).lastIndexOf(true);
  return (
    <ol class="path" aria-label={words.state}>
      {stations.map(({ title, reached, who, when }, index) => (
        <li key={title} class={reached ? 'reached' : ''} aria-current={index === now ? 'step' : undefined}>
          <b>{title}</b>
          <span class="quiet">{[who, when].filter(Boolean).join(' · ')}</span>
        </li>
      ))}
    </ol>
  );
}
