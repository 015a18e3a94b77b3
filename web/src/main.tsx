import { render } from 'preact';
import './style.css';
import './shell/shell.css';
import { App } from './shell/app.js';
// Writes of scans that still wait are sent on every screen.
import './scan/waiting.js';

render(<App />, document.getElementById('page')!);
