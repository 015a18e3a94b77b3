// The list of screens: what the warehouse works on, then what the office does from time to time.
import { useEffect, useRef } from 'preact/hooks';
import { linkTo } from './route.js';
import { screens, type Place } from './screens.js';
import { words } from './words.js';

function Links({ place, here }: { place: Place; here: string }) {
  const shown = Object.entries(screens).filter(([, screen]) => screen.place === place);
  return (
    <>
      {shown.map(([name, screen]) => (
        <a key={name} href={linkTo(name)} aria-current={name === here ? 'page' : undefined}>{screen.title()}</a>
      ))}
    </>
  );
}

export function Menu({ here }: { here: string }) {
  const more = useRef<HTMLDetailsElement>(null);
  const inMore = screens[here]?.place === 'more';
  useEffect(() => {
    const close = (event: Event) => {
      const inside = event.target instanceof Node && more.current?.querySelector('div')?.contains(event.target);
      const onSummary = event.target instanceof Node && more.current?.querySelector('summary')?.contains(event.target);
      if (more.current && !onSummary && (!inside || event.type === 'click')) more.current.open = false;
    };
    const onKey = (event: KeyboardEvent) => {
      if (event.key !== 'Escape' || !more.current?.open) return;
      more.current.open = false;
      more.current.querySelector('summary')?.focus();
    };
    addEventListener('click', close);
    addEventListener('focusin', close);
    addEventListener('keydown', onKey);
    return () => {
      removeEventListener('click', close);
      removeEventListener('focusin', close);
      removeEventListener('keydown', onKey);
    };
  }, []);
  return (
    <nav class="menu" aria-label={words.main}>
      <Links place="main" here={here} />
      <details ref={more}>
        <summary class={inMore ? 'here' : ''}>{words.more}</summary>
        <div><Links place="more" here={here} /></div>
      </details>
    </nav>
  );
}
