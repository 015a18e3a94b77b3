// The states of orders, and how many stand in each.
import { tabs, type Tab } from '../api/workbench.js';
import { linkTo } from '../shell/route.js';
import { common } from '../words/common.js';
import { formatNumber } from '../words/language.js';
import { anyTab, tabOf } from './filter.js';
import { words } from './words.js';

export function Tabs({ query, counts }: { query: URLSearchParams; counts: ReadonlyMap<Tab, number> }) {
  const here = tabOf(query);
  const link = (tab: string) => {
    const wanted = new URLSearchParams(query);
    wanted.set('tab', tab);
    return linkTo('orders', wanted);
  };
  return (
    <nav class="tabs" aria-label={words.tabs}>
      {tabs.map((tab) => (
        <a key={tab} href={link(tab)} aria-current={tab === here ? 'page' : undefined}>
          {words[tab]} <span class="count">{counts.has(tab) ? formatNumber(counts.get(tab)!) : ''}</span>
        </a>
      ))}
      <a href={link(anyTab)} aria-current={here === undefined ? 'page' : undefined}>{common.all}</a>
    </nav>
  );
}
