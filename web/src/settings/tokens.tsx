// The tokens by which programs call.
import { useState } from 'preact/hooks';
import { CopyButton } from '../parts/copy.js';
import { Dialog } from '../parts/dialog.js';
import { LoadNote, useLoaded } from '../parts/loaded.js';
import { say } from '../parts/toasts.js';
import { common } from '../words/common.js';
import { fill, formatTime } from '../words/language.js';
import { addToken, askTokens, askUsers, isSet, removeToken, type Token } from './access.js';
import { FormDialog } from './form_dialog.js';
import { words } from './words.js';

export function Tokens() {
  const tokens = useLoaded('', askTokens);
  const [adding, setAdding] = useState(false);
  const [made, setMade] = useState('');
  const [removing, setRemoving] = useState<Token>();
  return (
    <>
      <div class="row"><button type="button" class="main" onClick={() => setAdding(true)}>{words.addToken}</button></div>
      <LoadNote of={tokens} />
      {tokens.data?.length === 0 && <p class="quiet">{words.noTokens}</p>}
      {tokens.data && tokens.data.length > 0 && <TokenTable tokens={tokens.data} onRemove={setRemoving} />}
      {adding && <TokenDialog onClose={() => setAdding(false)} onMade={(token) => {
        setAdding(false);
        setMade(token);
        tokens.again();
      }} />}
      {made && (
        <Dialog title={words.newToken} onClose={() => setMade('')}>
          <p class="note warn">{words.onceOnly}</p>
          <pre class="token" tabIndex={0} role="region" aria-label={words.token}>{made}</pre>
          <div class="row end">
            <CopyButton text={made} />
            <button type="button" onClick={() => setMade('')}>{common.close}</button>
          </div>
        </Dialog>
      )}
      {removing && (
        <FormDialog title={fill(words.removeOf, { name: removing.Token })} main={words.remove}
          onClose={() => setRemoving(undefined)} onSubmit={async () => {
            await removeToken(removing);
            setRemoving(undefined);
            say('good', words.removed);
            tokens.again();
          }}>
          <p>{words.removeTokenAsk}</p>
        </FormDialog>
      )}
    </>
  );
}

function TokenTable({ tokens, onRemove }: { tokens: readonly Token[]; onRemove: (token: Token) => void }) {
  return (
    <div class="scrolls" tabIndex={0} role="region" aria-label={words.tokens}>
      <table>
        <thead>
          <tr>
            <th>{words.user}</th><th>{words.token}</th><th>{words.made}</th><th>{words.expires}</th><th>{words.used}</th>
            <th><span class="hidden">{words.actions}</span></th>
          </tr>
        </thead>
        <tbody>
          {tokens.map((token) => (
            <tr key={`${token.User}/${token.Token}`}>
              <td>{token.User}</td><td><b>{token.Token}</b></td><td>{formatTime(token.Made, 'date')}</td>
              <td>
                {token.Expires ? formatTime(token.Expires, 'date') : words.never}{' '}
                {isSet(token.Expired) && <span class="wrong">{words.expired}</span>}
              </td>
              <td>{token.Used ? formatTime(token.Used) : words.neverUsed}</td>
              <td>
                <button type="button" aria-label={fill(words.removeOf, { name: token.Token })} onClick={() => onRemove(token)}>
                  {words.remove}
                </button>
              </td>
            </tr>
          ))}
        </tbody>
      </table>
    </div>
  );
}

function TokenDialog({ onMade, onClose }: { onMade: (token: string) => void; onClose: () => void }) {
  const users = useLoaded('', askUsers);
  const [user, setUser] = useState('');
  const [name, setName] = useState('');
  const [days, setDays] = useState('90');
  return (
    <FormDialog title={words.addToken} main={words.make} onClose={onClose} onSubmit={async () => {
      const { token } = await addToken({ user, name: name.trim(), ...(days ? { days: Number(days) } : {}) });
      onMade(token);
    }}>
      <LoadNote of={users} />
      <label class="field">
        {words.user}
        <select required value={user} onChange={(event) => setUser(event.currentTarget.value)}>
          <option value="" />
          {users.data?.map(({ Name }) => <option key={Name} value={Name}>{Name}</option>)}
        </select>
      </label>
      <label class="field">
        {words.tokenName}
        <input required maxLength={60} autocomplete="off" value={name} onInput={(event) => setName(event.currentTarget.value)} />
      </label>
      <label class="field">
        {words.days}
        <input type="number" min={1} max={36500} step={1} value={days} onInput={(event) => setDays(event.currentTarget.value)} />
      </label>
    </FormDialog>
  );
}
