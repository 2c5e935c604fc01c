// The page of a record: a deal, a project, a company or a contact.

import { get } from './api.js';
import { lastBoardAddress } from './board.js';
import { element, recordAddress, recordText } from './dom.js';

function cellContent(cell) {
  return cell.record ? recordText('a', cell.text, { href: recordAddress(cell.record) }) : recordText('span', cell.text);
}

/** Cells that are empty in every row take no room. */
function filledColumns(rows) {
  const count = Math.max(...rows.map((row) => row.length));
  return [...Array(count).keys()].filter((at) => rows.some((row) => row[at]?.text));
}

function rowsElement(rows, title) {
  const columns = filledColumns(rows);
  if (columns.length === 2 && columns[0] === 0 && rows.every((row) => !row.some((cell) => cell.record))) {
    return element('dl', {}, rows.map((row) => [
      element('dt', { text: row[columns[0]].text }),
      element('dd', {}, cellContent(row[columns[1]]))]).flat());
  }
  return element('div', { class: 'table-scroll', role: 'region', tabindex: '0', 'aria-label': title || 'Details' },
    element('table', {}, element('tbody', {}, rows.map((row) =>
      element('tr', { class: row[columns[0]]?.text ? '' : 'continued' }, columns.map((at, place) =>
        element(place === 0 ? 'th' : 'td', place === 0 ? { scope: 'row' } : {}, row[at]?.text ? cellContent(row[at]) : '')))))));
}

function sectionElement(section) {
  return element('section', { class: 'panel' },
    section.title && element('h2', { text: section.title }),
    section.rows.length > 0 && rowsElement(section.rows, section.title),
    section.lines.map((line) => recordText('p', line, { class: 'line' })));
}

function activityElement(activity) {
  return element('section', { class: 'panel activity' },
    element('h2', { text: 'Activity' }),
    element('ul', { class: 'totals' }, activity.totals.map((total) =>
      element('li', { class: total.count === '0' ? 'none' : '' }, element('strong', { text: total.count }), ` ${total.label}`))),
    activity.days.length === 0 && element('p', { class: 'empty', text: 'Nothing recent' }),
    activity.days.map((day) => element('section', { class: 'day' }, element('h3', { text: day.heading }),
      element('ul', {}, day.entries.map((entry) => element('li', { class: 'entry' },
        element('span', { class: 'time', text: entry.time }),
        element('span', { class: 'kind', text: entry.kind }),
        element('div', {}, recordText('p', entry.title, { class: 'entry-title' }),
          entry.facts.length > 0 && recordText('p', entry.facts.join(' · '), { class: 'entry-facts' }))))))));
}

export async function showRecord(main, url, { signal }) {
  const identifier = decodeURIComponent(url.pathname.slice('/record/'.length));
  const record = await get(`/api/record/${identifier.split('/').map(encodeURIComponent).join('/')}`, signal);
  document.title = `${record.title} – Kestrel`;
  main.replaceChildren(
    element('div', { class: 'record-head' },
      element('a', { class: 'back', href: lastBoardAddress(), text: '← Board' }),
      element('p', { class: 'kind-label', text: record.kind }),
      recordText('h1', record.title)),
    element('div', { class: 'record' },
      element('div', { class: 'panels' }, record.sections.map(sectionElement)),
      record.activity && activityElement(record.activity)));
}
