// Parts of all sheets.
import { dateForm } from '../words/language.js';

type Fact = readonly [name: string, value: string | number | null | undefined];

export function Facts({ facts }: { facts: readonly Fact[] }) {
  return (
    <dl class="facts">
      {facts.filter(([, value]) => value).map(([name, value]) => <div key={name}><dt>{name}</dt><dd>{value}</dd></div>)}
    </dl>
  );
}

export function today(): string {
  return dateForm({ dateStyle: 'medium' }).format();
}
