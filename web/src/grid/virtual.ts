// Which of many rows or columns are in view.
import {
  elementScroll, observeElementOffset, observeElementRect, Virtualizer, type VirtualizerOptions,
} from '@tanstack/virtual-core';
import { useLayoutEffect, useReducer, useState } from 'preact/hooks';

type Options = VirtualizerOptions<HTMLElement, HTMLElement>;
type Given = Pick<Options, 'count' | 'getScrollElement' | 'estimateSize'> & Partial<Options>;

export function useVirtualizer(given: Given): Virtualizer<HTMLElement, HTMLElement> {
  const [, draw] = useReducer<number, void>((times) => times + 1, 0);
  const options: Options = {
    observeElementRect, observeElementOffset, scrollToFn: elementScroll, ...given, onChange: () => draw(),
  };
  const [virtualizer] = useState(() => new Virtualizer(options));
  virtualizer.setOptions(options);
  useLayoutEffect(() => virtualizer._didMount(), []);
  useLayoutEffect(() => virtualizer._willUpdate());
  return virtualizer;
}
