// What the selected orders can take.
import { useState } from 'preact/hooks';
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
  const fits = (step: Step) => !step.states || states.has(undefined) || step.states.some((state) => states.has(state));
  return (
    <div class="steps" role="toolbar" aria-label={fill(words.stepsOf, { count: keys.length })}>
      {steps.filter(fits).map((step) => (
        <button key={step.name} type="button" onClick={() => setOpen({ step, keys })}>{words[step.name]}</button>
      ))}
      {open && <StepDialog {...open} onChanged={onChanged} onClose={() => setOpen(undefined)} />}
    </div>
  );
}
