// Starts the page: theme, components, keys, and the files that lie in it.
import { render } from 'preact';
import { openEmbedded } from './model/actions';
import { followAddress, keepAddress } from './model/address';
import { followCurrentCall } from './model/current_call';
import { startTheme } from './model/theme';
import { App } from './ui/app';
import { listenToKeys } from './ui/keys';
import { connectViews } from './view/views';
import './styles/tokens.css';
import './styles/base.css';
import './styles/layout.css';
import './styles/calls.css';
import './styles/page.css';
import './styles/panels.css';

startTheme();
const root = document.getElementById('app');
if (root) render(<App />, root);
listenToKeys();
connectViews();
followCurrentCall();
await openEmbedded();
followAddress();
keepAddress();
