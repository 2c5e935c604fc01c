// A card of the board.

import { element, recordAddress, recordText } from './dom.js';

const shortLabels = { Task: 'Task', Appointment: 'Appt.' };

function initials(name) {
  const words = name.trim().split(/\s+/u).filter(Boolean);
  const first = (word) => Array.from(word)[0] ?? '';
  return (words.length > 1 ? first(words[0]) + first(words[words.length - 1]) : first(words[0] ?? '')).toUpperCase();
}

/** The card in one sentence, for those who hear it. */
function spoken(card, stage) {
  return [card.title, card.companies, card.people, card.amount && `value ${card.amount}`, card.due && `due ${card.due}`,
    ...card.next.map((next) => `next ${next.kind.toLowerCase()} ${next.when}`), `in ${stage}`].filter(Boolean).join(', ');
}

function facts(card) {
  const shown = [];
  if (card.due) shown.push(element('span', { class: 'fact' }, element('span', { class: 'what', text: 'Due' }), ` ${card.due}`));
  for (const next of card.next)
    shown.push(element('span', { class: 'fact next' }, element('span', { class: 'what', text: shortLabels[next.kind] ?? next.kind }), ` ${next.when}`));
  if (card.daysInStage !== undefined)
    shown.push(element('span', { class: 'fact', text: `${card.daysInStage.toLocaleString('en')} ${card.daysInStage === 1 ? 'day' : 'days'} in stage` }));
  return shown;
}

/** `column` is where the card stands; `move` is called when the user asks to move it. */
export function cardElement(card, column, move) {
  const title = recordText('a', card.title || 'Untitled',
    { class: 'title', href: recordAddress(card.id), tabindex: '-1', draggable: 'false' });
  const made = element('li', {
    class: 'card', tabindex: '-1', draggable: 'true', data: { id: card.id },
    'aria-label': spoken(card, column.title), 'aria-describedby': 'board-keys', 'aria-keyshortcuts': 'Enter M',
  },
    element('div', { class: 'card-head' }, title,
      element('button', {
        type: 'button', class: 'quiet move', tabindex: '-1', title: 'Move to… (M)', text: '⋯',
        'aria-label': `Move ${card.title} to another stage`, click: (event) => { event.stopPropagation(); move(made); },
      })),
    card.companies && recordText('p', card.companies, { class: 'companies' }),
    card.people && recordText('p', card.people, { class: 'people' }),
    card.amount !== undefined && element('p', { class: 'amount' }, element('strong', { text: card.amount }),
      card.probability !== undefined && element('span', { class: 'probability', text: `${card.probability} %` }),
      card.type && recordText('span', card.type, { class: 'type' })),
    element('div', { class: 'card-foot' }, element('div', { class: 'facts' }, facts(card)),
      card.assignee && element('span', { class: 'avatar', title: card.assignee, 'aria-hidden': 'true', text: initials(card.assignee) })));
  if (card.color) made.style.setProperty('--category', card.color);
  made.card = card;
  return made;
}
