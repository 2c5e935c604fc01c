// The pickers above the board. What is chosen is the query of the page's address, so that a reload and a link keep it.

import { element } from './dom.js';

/** Where there is room for all pickers they always show. */
const isWide = window.matchMedia('(min-width: 721px)');
let isOpen = false;
isWide.addEventListener('change', () => {
  for (const details of document.querySelectorAll('.filters')) details.open = isWide.matches;
});

/** A select; an option that the address names and the list lacks is kept, so that nothing is filtered unseen. */
function picker(label, key, options, chosen, change) {
  const id = `picker-${key}`;
  const select = element('select', { id, name: key, change: (event) => change(event.target.value) }, options);
  if (chosen && ![...select.options].some((option) => option.value === chosen))
    select.append(element('option', { value: chosen, text: `${chosen} (not in the list)` }));
  select.value = chosen;
  return element('div', { class: `picker${chosen && key !== 'pipeline' && key !== 'sort' && key !== 'order' ? ' is-set' : ''}` },
    element('label', { for: id, text: label }), select);
}

function option({ value, text }) {
  return element('option', { value, text });
}

function grouped({ label, options }) {
  return label ? element('optgroup', { label }, options.map(option)) : options.map(option);
}

/** The picker of the pipeline, those of filter and order, and what clears the filter; `go` is called with the query of
 * the address to go to. */
export function pickersOf(board, query, go) {
  const changed = (changes) => {
    const next = new URLSearchParams(query);
    for (const [key, value] of Object.entries(changes)) {
      if (value) next.set(key, value);
      else next.delete(key);
    }
    go(next);
  };
  const filterKeys = board.pickers.map((one) => one.key);
  const kinds = new Set(board.pipelines.map((one) => one.kind));
  const pipelineName = (one) => one.name + (one.isActive ? '' : ' (retired)');
  const pipelineOption = (one) => element('option', { value: `${one.kind}:${one.id}`, text: pipelineName(one) });
  const pipelines = kinds.size > 1
    ? [...kinds].map((kind) => element('optgroup', { label: kind === 'projects' ? 'Projects' : 'Opportunities' },
      board.pipelines.filter((one) => one.kind === kind).map(pipelineOption)))
    : board.pipelines.map(pipelineOption);

  const pipelinePicker = picker('Pipeline', 'pipeline', pipelines, `${board.kind}:${board.pipeline}`, (value) => {
    const [kind, pipeline] = value.split(':');
    // What narrows deals means nothing for projects.
    go(new URLSearchParams({ kind, pipeline }));
  });
  const filters = board.pickers.map((one) => picker(one.label, one.key,
    [element('option', { value: '', text: one.anything }), ...one.groups.flatMap(grouped)], query.get(one.key) ?? '',
    (value) => changed({ [one.key]: value })));
  const sorts = [
    picker('Sort by', 'sort', board.sort.keys.map(option), board.sort.key, (value) => changed({ sort: value, order: '' })),
    picker('Order', 'order', board.sort.orders.map(option), board.sort.order,
      (value) => changed({ sort: board.sort.key, order: value })),
  ];
  const clear = board.isFiltered && element('button', {
    type: 'button', class: 'clear', text: 'Clear filters',
    click: () => changed(Object.fromEntries(filterKeys.map((key) => [key, '']))),
  });
  const details = element('details', { class: 'filters', toggle: () => { isOpen = details.open || isWide.matches; } },
    element('summary', { text: 'Filter and sort' }), element('div', { class: 'pickers' }, filters, sorts));
  details.open = isOpen || isWide.matches;
  const submit = (event) => event.preventDefault();
  return {
    pipeline: element('form', { class: 'pipeline', submit }, pipelinePicker),
    filters: element('form', { class: 'filter-bar', role: 'search', 'aria-label': 'Filter and sort', submit }, details),
    clear,
  };
}
