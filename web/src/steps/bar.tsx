// What the selected orders can take.
import { useState } from 'preact/hooks';
import { may } from '../api/door.js';
import { fill } from '../words/language.js';
import { StepDialog } from './dialog.js';
import { steps, type Step } from './steps.js';
import { words } from './words.js';
import './steps.css';

interface Props {
  readonly keys: readonly number[];
  /** FOrderStatus, where it is known. */
  readonly stateOf: (key: number) => number | undefined;
  readonly onChanged: (keys: readonly number[]) => void;
}

export function StepsBar({ keys, stateOf, onChanged }: Props) {
  const [open, setOpen] = useState<{ step: Step; keys: readonly number[] }>();
  const states = new Set(keys.map(stateOf));
  const fits = ({ operation, states: wanted }: Step) => (
    may(operation) && (!wanted || states.has(undefined) || wanted.some((state) => states.has(state)))
  );
  const fitting = steps.filter(fits);
  if (!fitting.length) return null;
  return (
    <div class="steps" role="toolbar" aria-label={fill(words.stepsOf, { count: keys.length })}>
      {fitting.map((step) => (
        <button key={step.name} type="button" onClick={() => setOpen({ step, keys })}>{words[step.name]}</button>
      ))}
      {open && <StepDialog {...open} onChanged={onChanged} onClose={() => setOpen(undefined)} />}
    </div>
  );
}
