// What the user is told beside the page itself.

import { element } from './dom.js';

/** For those who do not see what has changed. */
export function announce(text) {
  const region = document.getElementById('announcements');
  // The same text twice is to be read twice.
  region.textContent = '';
  requestAnimationFrame(() => { region.textContent = text; });
}

/** Trouble, in words; stays until it is dismissed or the next one comes. */
export function showTrouble(problem) {
  const alert = element('div', { class: 'alert', role: 'alert' },
    element('div', {},
      element('strong', { text: problem.title ?? 'Something unexpected happened.' }),
      element('p', { text: problem.title ? problem.explanation : String(problem.message ?? problem) })),
    element('button', { type: 'button', class: 'quiet', 'aria-label': 'Dismiss', text: '✕', click: clearTrouble }));
  document.getElementById('alerts').replaceChildren(alert);
}

export function clearTrouble() {
  document.getElementById('alerts').replaceChildren();
}

/** A whole page of trouble, for when there is nothing else to show. */
export function troublePage(problem) {
  return element('section', { class: 'notice', role: 'alert' },
    element('h1', { text: problem.title ?? 'Something unexpected happened.' }),
    element('p', { text: problem.title ? problem.explanation : String(problem.message ?? problem) }));
}
