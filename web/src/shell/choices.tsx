// Language and appearance, kept on this machine.
import { language, languageNames, languages, setLanguage, type Language } from '../words/language.js';
import { setTheme, theme, themes, type Theme } from './theme.js';
import { words } from './words.js';

const themeWords = { system: 'themeSystem', light: 'themeLight', dark: 'themeDark' } as const;

export function Choices() {
  return (
    <>
      <select aria-label={words.language} value={language.value}
        onChange={(event) => setLanguage(event.currentTarget.value as Language)}>
        {languages.map((known) => <option key={known} value={known}>{languageNames[known]}</option>)}
      </select>
      <select aria-label={words.theme} value={theme.value}
        onChange={(event) => setTheme(event.currentTarget.value as Theme)}>
        {themes.map((known) => <option key={known} value={known}>{words[themeWords[known]]}</option>)}
      </select>
    </>
  );
}
