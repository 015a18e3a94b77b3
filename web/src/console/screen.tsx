// The console: any operation, by a form that the server's own description makes.
import { useEffect, useState } from 'preact/hooks';
import { wordsOf } from '../parts/problem.js';
import { route } from '../shell/route.js';
import { common } from '../words/common.js';
import { askOperations, type Operation } from './document.js';
import { OperationForm } from './operation_form.js';
import { OperationList } from './operation_list.js';
import { words } from './words.js';
import './console.css';

function useOperations() {
  const [operations, setOperations] = useState<readonly Operation[]>();
  const [wrong, setWrong] = useState('');
  const ask = () => {
    setWrong('');
    askOperations().then(setOperations, (error: unknown) => setWrong(wordsOf(error)));
  };
  useEffect(ask, []);
  return { operations, wrong, again: ask };
}

export function ConsoleScreen() {
  const { operations, wrong, again } = useOperations();
  const here = route.value.path.slice(1).join('/');
  const operation = operations?.find(({ path }) => path === here);
  useEffect(() => {
    // The list stays where it is; who chose by keyboard goes on in the form.
    if (operation) document.querySelector<HTMLElement>('.console h1')?.focus();
  }, [operation]);
  return (
    <div class="console">
      {wrong && (
        <div class="note bad row" role="alert">
          {wrong} <button type="button" onClick={again}>{common.retry}</button>
        </div>
      )}
      {!operations && !wrong && <p class="quiet" role="status">{common.loading}</p>}
      {operations && <OperationList operations={operations} here={here} />}
      {operations && !operation && (
        <div class="operation">
          <h1>{common.console}</h1>
          <p class={here ? 'note warn' : 'quiet'}>{here ? words.noOperation : words.choose}</p>
        </div>
      )}
      {operation && <OperationForm key={operation.path} operation={operation} />}
    </div>
  );
}
