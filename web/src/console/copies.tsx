// The call of the form as a text for other programs.
import { useState } from 'preact/hooks';
import { CopyButton } from '../parts/copy.js';
import { commandOf, curlOf, scriptOf, type Called } from './clients.js';
import { words } from './words.js';

const clients = { curl: curlOf, command: commandOf, script: scriptOf } as const;
type Client = keyof typeof clients;

/** @param called none while the form is wrong */
export function Copies({ called }: { called: Called | undefined }) {
  const [chosen, setChosen] = useState<Client>('curl');
  const names: Record<Client, string> = { curl: 'curl', command: words.command, script: 'VBScript' };
  const text = called ? clients[chosen](called) : '';
  return (
    <section class="copies stack">
      <h2>{words.elsewhere}</h2>
      <div class="row">
        {(Object.keys(clients) as Client[]).map((client) => (
          <button key={client} type="button" aria-pressed={client === chosen} onClick={() => setChosen(client)}>
            {names[client]}
          </button>
        ))}
        {called && <CopyButton text={text} />}
      </div>
      {called && <pre tabIndex={0} role="region" aria-label={names[chosen]}>{text}</pre>}
      {!called && <p class="quiet">{words.wrongJson}</p>}
      {chosen === 'command' && <p class="quiet">{words.commandNote}</p>}
      {chosen === 'script' && <p class="quiet">{words.scriptNote}</p>}
    </section>
  );
}
