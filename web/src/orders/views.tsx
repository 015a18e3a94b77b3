// What is shown, kept under names.
import { keep, kept } from '../api/kept.js';
import { linkTo } from '../shell/route.js';
import { Dialog, FormEnd } from '../parts/dialog.js';
import { common } from '../words/common.js';
import { fill } from '../words/language.js';
import { words } from './words.js';

interface View {
  readonly name: string;
  readonly query: string;
}

export function ViewsDialog({ query, onClose }: { query: URLSearchParams; onClose: () => void }) {
  const views = kept<View[]>('views') ?? [];
  const store = (wanted: View[]) => keep('views', wanted);
  const submit = (event: SubmitEvent) => {
    event.preventDefault();
    const form = event.currentTarget as HTMLFormElement;
    const name = String(new FormData(form).get('name')).trim();
    if (!name) return;
    store([...views.filter((view) => view.name !== name), { name, query: query.toString() }]);
    form.reset();
  };
  return (
    <Dialog title={words.views} onClose={onClose}>
      {views.length === 0 && <p class="quiet">{common.nothing}</p>}
      <ul class="views">
        {views.map((view) => (
          <li key={view.name} class="row">
            <a href={linkTo('orders', new URLSearchParams(view.query))} onClick={onClose}>{view.name}</a>
            <button type="button" aria-label={fill(words.removeView, { view: view.name })}
              onClick={() => store(views.filter((other) => other !== view))}>×</button>
          </li>
        ))}
      </ul>
      <form class="stack" onSubmit={submit}>
        <h3>{words.saveView}</h3>
        <label class="field">{words.viewName}<input name="name" required maxLength={60} autocomplete="off" /></label>
        <FormEnd main={common.save} close={common.close} onClose={onClose} />
      </form>
    </Dialog>
  );
}
