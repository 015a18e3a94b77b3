// A small list that is pulled down, and closes by itself when one goes elsewhere.
import type { ComponentChildren } from 'preact';
import { useEffect, useRef } from 'preact/hooks';

export function Pull({ title, here = false, children }: { title: string; here?: boolean; children: ComponentChildren }) {
  const details = useRef<HTMLDetailsElement>(null);
  useEffect(() => {
    const shut = () => { if (details.current) details.current.open = false; };
    const elsewhere = (event: Event) => event.target instanceof Node && !details.current?.contains(event.target) && shut();
    const onKey = (event: KeyboardEvent) => {
      if (event.key !== 'Escape' || !details.current?.open) return;
      shut();
      details.current.querySelector('summary')?.focus();
    };
    addEventListener('click', elsewhere);
    addEventListener('focusin', elsewhere);
    addEventListener('keydown', onKey);
    addEventListener('hashchange', shut);
    return () => {
      removeEventListener('click', elsewhere);
      removeEventListener('focusin', elsewhere);
      removeEventListener('keydown', onKey);
      removeEventListener('hashchange', shut);
    };
  }, []);
  return (
    <details ref={details} class="pull">
      <summary class={here ? 'here' : ''}>{title}</summary>
      <div>{children}</div>
    </details>
  );
}
