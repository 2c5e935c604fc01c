// The list of contacts, with a search.

import { get } from './api.js';
import { element, recordAddress, recordText } from './dom.js';
import { announce } from './messages.js';

function rowsOf(list) {
  return list.contacts.map((contact) => element('tr', {},
    element('th', { scope: 'row' }, recordText('a', contact.name, { href: recordAddress(contact.id) })),
    recordText('td', contact.company), recordText('td', contact.email), recordText('td', contact.phone)));
}

function countText(list) {
  const shown = list.contacts.length;
  const total = list.total.toLocaleString('en');
  return shown < list.total ? `The first ${shown} of ${total} contacts` : `${total} ${list.total === 1 ? 'contact' : 'contacts'}`;
}

export async function showContacts(main, url, { signal }) {
  let search = url.searchParams.get('search') ?? '';
  let latest = new AbortController();
  const fetched = (text, until) => get(`/api/contacts?${new URLSearchParams({ search: text })}`, until);
  const list = await fetched(search, signal);
  document.title = 'Contacts – Kestrel';
  const count = element('p', { class: 'board-sum', text: countText(list) });
  const body = element('tbody', {}, rowsOf(list));
  const input = element('input', {
    type: 'search', id: 'contact-search', name: 'search', value: search, autocomplete: 'off', dir: 'auto',
    input: async () => {
      search = input.value;
      latest.abort();
      latest = new AbortController();
      const query = search ? `?${new URLSearchParams({ search })}` : '';
      history.replaceState(null, '', `/contacts${query}`);
      try {
        const found = await fetched(search, latest.signal);
        body.replaceChildren(...rowsOf(found));
        count.textContent = countText(found);
        announce(countText(found));
      } catch (problem) {
        if (problem.name !== 'AbortError') count.textContent = problem.message;
      }
    },
  });
  main.replaceChildren(
    element('div', { class: 'board-head' },
      element('div', { class: 'board-title' }, element('h1', { text: 'Contacts' }), count),
      element('form', { role: 'search', class: 'search', submit: (event) => event.preventDefault() },
        element('label', { for: 'contact-search', text: 'Search' }), input)),
    element('div', { class: 'table-scroll', role: 'region', tabindex: '0', 'aria-label': 'Contacts' },
      element('table', { class: 'contacts' },
        element('thead', {}, element('tr', {}, ['Name', 'Company', 'E-mail', 'Phone'].map((text) => element('th', { scope: 'col', text })))),
        body)));
}
