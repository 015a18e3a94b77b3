// The queue of what was submitted to outside warehouses.
import { ask, type Row as Answer } from '../api/workbench.js';
import { LoadNote, type Loaded } from '../parts/loaded.js';
import { formatNumber, formatTime } from '../words/language.js';
import { words } from './words.js';

type Task = Answer<'tasks'>;

export const askTasks = () => ask('tasks', {});

function typeOf({ FTaskType }: Task): string {
  const types: Readonly<Record<number, string>> = {
    120: words.purchaseLines, 130: words.webOrders, 160: words.salesLines,
  };
  return types[FTaskType] ?? String(FTaskType);
}

function stateOf({ FStatus }: Task): string {
  return [words.queued, words.underWay, words.done][FStatus] ?? String(FStatus);
}

export function Tasks({ of: tasks }: { of: Loaded<Task[]> }) {
  return (
    <section class="stack">
      <div class="row">
        <h2>{words.queue}</h2>
        <button type="button" onClick={tasks.again}>{words.refresh}</button>
      </div>
      <LoadNote of={tasks} />
      {tasks.data?.length === 0 && <p class="quiet">{words.noTasks}</p>}
      {tasks.data && tasks.data.length > 0 && (
        <div class="short-list" tabIndex={0} role="region" aria-label={words.queue}>
          <table>
            <thead>
              <tr>
                <th>{words.state}</th><th class="number">{words.progress}</th><th>{words.type}</th>
                <th class="number">{words.documents}</th><th>{words.provider}</th><th>{words.warehouse}</th>
                <th>{words.user}</th><th>{words.moved}</th>
              </tr>
            </thead>
            <tbody>
              {tasks.data.map((task) => (
                <tr key={task.FRowID}>
                  <td>{stateOf(task)}</td>
                  <td class="number">{formatNumber(task.FProgressPer)} %</td>
                  <td>{typeOf(task)}</td>
                  <td class="number">{formatNumber(task.FTaskName.split(',').filter(Boolean).length)}</td>
                  <td>{task.FProvider || task.FWebTplType}</td>
                  <td>{task.FWarehouse || task.FWebTplID}</td>
                  <td>{task.FUserName}</td>
                  <td>{formatTime(task.FRefreshTime)}</td>
                </tr>
              ))}
            </tbody>
          </table>
        </div>
      )}
    </section>
  );
}
