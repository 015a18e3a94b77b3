// A button that copies a text.
import { defineWords } from '../words/language.js';
import { say, sayError } from './toasts.js';

const words = defineWords({
  copy: ['Copy', '复制', '複製'],
  copied: ['Copied', '已复制', '已複製'],
  notCopied: [
    'The browser does not let the page copy. Select the text and copy it by hand.',
    '浏览器不允许页面复制，请选中文字后手动复制。',
    '瀏覽器不允許頁面複製，請選取文字後手動複製。',
  ],
});

export function CopyButton({ text }: { text: string }) {
  const copy = () => {
    // Browsers have a clipboard over TLS and on this machine only.
    if (!navigator.clipboard) say('warn', words.notCopied);
    else navigator.clipboard.writeText(text).then(() => say('good', words.copied), sayError);
  };
  return <button type="button" onClick={copy}>{words.copy}</button>;
}
