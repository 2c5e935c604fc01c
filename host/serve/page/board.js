// The pipeline board.

import { get } from './api.js';
import { pickersOf } from './board_filters.js';
import { cardElement } from './card.js';
import { listenToDrags } from './card_drag.js';
import { focusCard, listenToKeys, makeCurrent } from './card_keys.js';
import { element, recordAddress, recordText } from './dom.js';
import { announce, clearTrouble, showTrouble } from './messages.js';
import { askAndChangeStage } from './stage_change.js';

/** The address of the board as it was looked at last, and the card that was current there. */
let lastAddress = '/';
let lastCard;

export function lastBoardAddress() {
  return lastAddress;
}

function countText(count) {
  return `${count.toLocaleString('en')} ${count === 1 ? 'card' : 'cards'}`;
}

class Board {
  constructor(data, url, navigate) {
    this.data = data;
    this.url = url;
    this.navigate = navigate;
    this.columns = element('div', { class: 'columns' }, data.columns.map((column) => this.columnElement(column)));
    this.isAsking = false;
    listenToKeys(this.columns, {
      open: (card) => this.open(card),
      move: (card) => this.move(card, Number(card.closest('.column').dataset.stage), card.card.drag),
    });
    listenToDrags(this.columns, data.dragType,
      (card, column, dragged) => this.move(card, Number(column.dataset.stage), dragged));
    this.columns.addEventListener('click', (event) => {
      const card = event.target.closest('.card');
      if (card && !event.target.closest('a, button') && !String(getSelection())) this.open(card);
    });
  }

  columnElement(column) {
    const title = `stage-${column.id}`;
    const list = element('ul', { class: 'cards', 'aria-labelledby': title });
    const made = element('section', { class: 'column', 'aria-labelledby': title, data: { stage: column.id } },
      element('header', {},
        element('h2', { id: title },
          recordText('span', column.title || 'Without a name', { class: 'column-title' }),
          element('span', { class: 'count', text: column.count.toLocaleString('en'), 'aria-label': countText(column.count) })),
        column.total !== undefined && element('p', { class: 'column-total', text: `Total ${column.total}` }),
        !column.isActive && element('p', { class: 'column-total', text: 'Not in the pipeline any more' })),
      list);
    this.append(list, column, column.cards);
    return made;
  }

  append(list, column, cards) {
    list.append(...cards.map((card) => cardElement(card, column,
      (made) => this.move(made, Number(made.closest('.column').dataset.stage), card.drag))));
    list.querySelector('.more')?.remove();
    const shown = list.querySelectorAll('.card').length;
    if (shown === 0) list.append(element('li', { class: 'empty', text: 'No cards' }));
    if (shown >= column.count || cards.length === 0) return;
    list.append(element('li', { class: 'more' }, element('button', {
      type: 'button', text: `Show more of ${(column.count - shown).toLocaleString('en')}`,
      click: () => this.showMore(list, column, shown),
    })));
  }

  async showMore(list, column, shown) {
    const query = new URLSearchParams(this.url.search);
    query.set('stage', column.id);
    query.set('from', shown);
    try {
      const more = await get(`/api/column?${query}`);
      this.append(list, column, more.cards);
      const first = list.querySelectorAll('.card')[shown];
      if (first) focusCard(this.columns, first);
    } catch (problem) {
      showTrouble(problem);
    }
  }

  open(card) {
    lastCard = card.dataset.id;
    this.navigate(recordAddress(card.dataset.id)).then(() => document.getElementById('main').focus());
  }

  /** Puts the card on top of a column, unless it is in it already. */
  place(card, stage) {
    const list = this.columns.querySelector(`.column[data-stage="${CSS.escape(String(stage))}"] .cards`);
    if (list && list !== card.parentElement) list.prepend(card);
  }

  /** Asks for what the change needs; meanwhile the card shows where it is to go, and goes back when it does not. */
  async move(card, stage, dragged) {
    if (this.isAsking) return;
    this.isAsking = true;
    clearTrouble();
    const parent = card.parentElement;
    const next = card.nextSibling;
    card.classList.add('pending');
    let trouble;
    let stageName;
    try {
      this.place(card, stage);
      stageName = await askAndChangeStage({
        card: card.card, dragged, stage,
        stages: this.data.columns.filter((column) => column.isActive).map(({ id, title }) => ({ id, title })),
        onChoice: (chosen) => this.place(card, chosen),
      });
    } catch (problem) {
      trouble = problem;
    }
    this.isAsking = false;
    if (stageName !== undefined) {
      await this.refresh(card.dataset.id);
      announce(`Moved ${card.card.title} to ${stageName}.`);
      return;
    }
    card.classList.remove('pending');
    parent.insertBefore(card, next);
    focusCard(this.columns, card);
    if (trouble) showTrouble(trouble);
    else announce(`${card.card.title} stays where it is.`);
  }

  async refresh(cardID) {
    lastCard = cardID;
    await this.navigate(location.href, { isReload: true });
  }

  /** The card that was current before, or the first one. */
  takeFocus(isWanted) {
    const known = lastCard && this.columns.querySelector(`.card[data-id="${CSS.escape(lastCard)}"]`);
    lastCard = undefined;
    if (known && isWanted) focusCard(this.columns, known);
    else makeCurrent(this.columns, known || this.columns.querySelector('.card'));
  }
}

export async function showBoard(main, url, { signal, navigate }) {
  const data = await get(`/api/board${url.search}`, signal);
  lastAddress = url.pathname + url.search;
  const board = new Board(data, url, navigate);
  const pipeline = data.pipelines.find((one) => one.kind === data.kind && one.id === data.pipeline);
  const name = pipeline?.name ?? 'Board';
  document.title = `${name} – Kestrel`;
  // A picker that had the focus keeps it, though it is a new one.
  const focused = main.contains(document.activeElement) ? document.activeElement.id : '';
  const filters = data.filterText || (data.isFiltered ? 'Filtered' : '');
  const pickers = pickersOf(data, new URLSearchParams(url.search), (query) => navigate(query.size ? `/?${query}` : '/'));
  main.replaceChildren(
    element('div', { class: 'board-head' },
      element('div', { class: 'board-title' },
        recordText('h1', name),
        element('p', { class: 'board-sum' }, countText(data.count), data.total !== undefined && ` · total ${data.total}`,
          element('span', { class: 'sort-text', text: `Sorted by ${data.sortText.toLocaleLowerCase('en')}` })),
        filters && element('p', { class: 'filter-line' },
          element('span', { class: 'filter-text' }, 'Filter: ', recordText('span', filters, { id: 'filter-text' })), pickers.clear)),
      pickers.pipeline),
    pickers.filters,
    element('p', {
      id: 'board-keys', class: 'keys',
      text: 'Arrow keys go from card to card, Enter opens one, M moves it to another stage.',
    }),
    board.columns);
  const wasPicker = focused.startsWith('picker-') && document.getElementById(focused);
  if (wasPicker) wasPicker.focus();
  board.takeFocus(!wasPicker);
  if (data.isFiltered || wasPicker) announce(`${countText(data.count)}${filters ? `, filter: ${filters}` : ''}.`);
}
