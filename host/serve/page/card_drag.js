// Cards that are dragged with the mouse. A card travels in the form that the server gave it, under the media type that it
// named; what is dropped is read by the server alone.

/** `drop` is called with the card's element, the column's element and what was dropped. */
export function listenToDrags(board, dragType, drop) {
  let dragged;
  const columnOf = (event) => event.target.closest?.('.column');
  const isCard = (event) => dragged && [...event.dataTransfer.types].includes(dragType);
  const mark = (column) => {
    for (const other of board.querySelectorAll('.column.target')) if (other !== column) other.classList.remove('target');
    column?.classList.add('target');
  };

  board.addEventListener('dragstart', (event) => {
    dragged = event.target.closest?.('.card');
    if (!dragged) return;
    event.dataTransfer.setData(dragType, dragged.card.drag);
    event.dataTransfer.effectAllowed = 'move';
    dragged.classList.add('dragged');
  });
  board.addEventListener('dragover', (event) => {
    const column = columnOf(event);
    if (!column || !isCard(event)) return mark(undefined);
    event.preventDefault();
    event.dataTransfer.dropEffect = 'move';
    mark(column === dragged.closest('.column') ? undefined : column);
  });
  board.addEventListener('drop', (event) => {
    const column = columnOf(event);
    if (!column || !isCard(event)) return;
    event.preventDefault();
    if (column !== dragged.closest('.column')) drop(dragged, column, event.dataTransfer.getData(dragType));
  });
  board.addEventListener('dragend', () => {
    dragged?.classList.remove('dragged');
    dragged = undefined;
    mark(undefined);
  });
}
