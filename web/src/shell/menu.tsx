// The list of screens: what the warehouse works on, then what the office does from time to time.
import { caller, may } from '../api/door.js';
import { Pull } from './pull.js';
import { linkTo } from './route.js';
import { screens, type Place } from './screens.js';
import { words } from './words.js';

const administrator = 'administrator';

function Links({ place, here }: { place: Place; here: string }) {
  const shown = Object.entries(screens).filter(([, screen]) => (
    screen.place === place && (!screen.forAdministrators || caller.value?.role === administrator)
    && (!screen.operations || screen.operations.every(may))
  ));
  return (
    <>
      {shown.map(([name, screen]) => (
        <a key={name} href={linkTo(name)} aria-current={name === here ? 'page' : undefined}>{screen.title()}</a>
      ))}
    </>
  );
}

export function Menu({ here }: { here: string }) {
  return (
    <nav class="menu" aria-label={words.main}>
      <Links place="main" here={here} />
      <Pull title={words.more} here={screens[here]?.place === 'more'}><Links place="more" here={here} /></Pull>
    </nav>
  );
}
