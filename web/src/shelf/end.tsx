// The end of a round: complete orders are confirmed, the others are named and left.
import { tell, told, ToldNote } from '../scan/told.js';
import { WaitingNote } from '../scan/waiting_note.js';
import { fill } from '../words/language.js';
import { confirmRound, goTo, goToSkipped, outcomeOf, round, type Round } from './round.js';
import { words } from './words.js';

export function End({ now }: { now: Round }) {
  const { complete, short, open } = outcomeOf(now);
  const again = () => {
    told.value = undefined;
    round.value = null;
  };
  const confirm = () => {
    confirmRound(complete);
    tell('good', words.confirmed);
  };
  return (
    <div class="walk">
      <h1>{words.done}</h1>
      <ToldNote />
      <WaitingNote />
      {open > 0 && (
        <p class="note warn row">
          {fill(words.open, { lines: open })}
          <button type="button" onClick={goToSkipped}>{words.toSkipped}</button>
        </p>
      )}
      <section>
        <h2>{fill(words.completeOrders, { orders: complete.length })}</h2>
        <p>{complete.map(({ name }) => name).join(', ')}</p>
      </section>
      {short.length > 0 && (
        <section>
          <h2>{words.shortOrders}</h2>
          <ul>
            {short.map(({ order, missing }) => (
              <li key={order.order}>
                <b>{order.name}</b>
                {missing.map(({ line, got, wanted }, index) => (
                  <div key={index}>
                    {line.name} {line.attribute}: {fill(words.missing, { found: got, wanted, unit: line.unit })}
                  </div>
                ))}
              </li>
            ))}
          </ul>
        </section>
      )}
      <div class="thumbs">
        {now.confirmed ? (
          <button type="button" class="main" onClick={again}>{words.newRound}</button>
        ) : (
          <>
            <button type="button" onClick={() => goTo(now.lines.length - 1)}>{words.back}</button>
            <button type="button" class="main" onClick={complete.length > 0 ? confirm : again}>
              {complete.length > 0 ? fill(words.confirmAll, { orders: complete.length }) : words.newRound}
            </button>
          </>
        )}
      </div>
    </div>
  );
}
