// How an operation is called: tried or kept, at once or order by order, and in which form it answers.
import { formatOf, type Format, type Options } from './call.js';
import type { Operation } from './document.js';
import { words } from './words.js';

interface Props {
  readonly operation: Operation;
  readonly options: Options;
  readonly onChange: (options: Options) => void;
  /** None where nothing is written. */
  readonly idempotencyKey: string | undefined;
}

export function OptionFields({ operation, options, onChange, idempotencyKey }: Props) {
  const change = (changed: Partial<Options>) => onChange({ ...options, ...changed });
  return (
    <fieldset>
      <legend>{words.options}</legend>
      <label class="row">
        <input type="checkbox" checked={options.dryRun}
          onChange={(event) => change({ dryRun: event.currentTarget.checked })} />
        {words.dryRun}
      </label>
      {operation.each && (
        <label class="row">
          <input type="checkbox" checked={options.each}
            onChange={(event) => change({ each: event.currentTarget.checked })} />
          {words.each}
        </label>
      )}
      <div class="row top">
        {operation.columns && (
          <label class="field">
            {words.columns}
            <input value={options.columns} placeholder="FID,FOrderID" spellcheck={false} autocomplete="off"
              onInput={(event) => change({ columns: event.currentTarget.value.replace(/\s/g, '') })} />
          </label>
        )}
        <label class="field">
          {words.format}
          <select value={formatOf(options)} disabled={options.dryRun}
            onChange={(event) => change({ format: event.currentTarget.value as Format })}>
            <option value="json">{words.formatJson}</option>
            <option value="csv">{words.formatCsv}</option>
            <option value="ndjson">{words.formatLines}</option>
          </select>
        </label>
      </div>
      {idempotencyKey && (
        <label class="field">
          {words.key}
          <input class="code" readOnly value={idempotencyKey} aria-describedby="key-help" />
          <small id="key-help">{words.keyHelp}</small>
        </label>
      )}
    </fieldset>
  );
}
