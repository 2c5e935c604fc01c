// The keyboard on the board: one card at a time is in the order of the Tab key, arrow keys go to the others.

function cardsIn(column) {
  return [...column.querySelectorAll('.card')];
}

/** Makes the card the one that the Tab key comes to. */
export function makeCurrent(board, card) {
  for (const other of board.querySelectorAll('.card[tabindex="0"]')) {
    other.tabIndex = -1;
    other.querySelector('.move').tabIndex = -1;
  }
  if (!card) return;
  card.tabIndex = 0;
  card.querySelector('.move').tabIndex = 0;
}

export function focusCard(board, card) {
  makeCurrent(board, card);
  card.focus();
  card.scrollIntoView({ block: 'nearest', inline: 'nearest' });
}

function neighbour(card, key) {
  const columns = [...card.closest('.columns').querySelectorAll('.column')];
  const own = card.closest('.column');
  const cards = cardsIn(own);
  const place = cards.indexOf(card);
  const beside = (step) => {
    for (let at = columns.indexOf(own) + step; columns[at]; at += step) {
      const others = cardsIn(columns[at]);
      if (others.length > 0) return others[Math.min(place, others.length - 1)];
    }
    return undefined;
  };
  switch (key) {
    case 'ArrowDown': return cards[place + 1];
    case 'ArrowUp': return cards[place - 1];
    case 'ArrowRight': return beside(1);
    case 'ArrowLeft': return beside(-1);
    case 'Home': return cards[0];
    case 'End': return cards[cards.length - 1];
    default: return undefined;
  }
}

/** `open` and `move` are called with the card's element. */
export function listenToKeys(board, { open, move }) {
  board.addEventListener('focusin', (event) => {
    const card = event.target.closest('.card');
    if (card) makeCurrent(board, card);
  });
  board.addEventListener('keydown', (event) => {
    const card = event.target.closest('.card');
    if (!card || event.target !== card || event.ctrlKey || event.metaKey || event.altKey) return;
    const next = neighbour(card, event.key);
    if (next) focusCard(board, next);
    else if (event.key === 'Enter') open(card);
    else if (event.key === 'm' || event.key === 'M') move(card);
    else if (!['ArrowDown', 'ArrowUp', 'ArrowLeft', 'ArrowRight', 'Home', 'End'].includes(event.key)) return;
    event.preventDefault();
  });
}
