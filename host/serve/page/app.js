// Shows the page that the address names, and the next one without loading the document again.

import { get } from './api.js';
import { showBoard } from './board.js';
import { showContacts } from './contacts.js';
import { clearTrouble, troublePage } from './messages.js';
import { showRecord } from './record.js';

const main = document.getElementById('main');
let current;

function viewOf(url) {
  if (url.pathname === '/') return { name: 'board', show: showBoard };
  if (url.pathname === '/contacts') return { name: 'contacts', show: showContacts };
  if (url.pathname.startsWith('/record/')) return { name: 'record', show: showRecord };
  return undefined;
}

async function render() {
  current?.abort();
  const shown = current = new AbortController();
  const url = new URL(location.href);
  const view = viewOf(url);
  for (const link of document.querySelectorAll('nav a[data-nav]')) {
    if (link.dataset.nav === view?.name) link.setAttribute('aria-current', 'page');
    else link.removeAttribute('aria-current');
  }
  main.setAttribute('aria-busy', 'true');
  try {
    await view.show(main, url, { signal: shown.signal, navigate });
  } catch (problem) {
    if (shown.signal.aborted) return;
    if (problem.name === 'AbortError') return;
    document.title = `${problem.title ?? 'Trouble'} – Kestrel`;
    main.replaceChildren(troublePage(problem));
  } finally {
    if (!shown.signal.aborted) main.removeAttribute('aria-busy');
  }
}

/** Goes to an address of this page; with `isReload` to the one that is shown, anew. */
function navigate(address, { isReload = false } = {}) {
  if (!isReload) history.pushState(null, '', address);
  clearTrouble();
  return render();
}

document.addEventListener('click', (event) => {
  const link = event.target.closest('a[href]');
  if (!link || event.defaultPrevented || event.button !== 0) return;
  if (event.metaKey || event.ctrlKey || event.shiftKey || event.altKey) return;
  const url = new URL(link.href);
  if (url.origin !== location.origin || url.hash || !viewOf(url)) return;
  event.preventDefault();
  navigate(url.href).then(() => { if (viewOf(url).name !== 'board') main.focus(); });
});
window.addEventListener('popstate', () => { clearTrouble(); render(); });

get('/api/user').then((user) => { document.getElementById('user').textContent = user.name; }, () => {});
render();
