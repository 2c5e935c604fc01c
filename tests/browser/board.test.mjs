// The board: what it shows, filters and sorts.

import assert from 'node:assert/strict';
import { once } from 'node:events';
import { createServer } from 'node:http';
import { test } from 'node:test';
import { cardOf, columnsOf, hostile, prepare, ready, rightToLeft, veryLong } from './support.mjs';

const kestrel = prepare();

test('draws the columns with their cards, and takes the token out of the address', async (t) => {
  const page = await kestrel.page(t);
  assert.equal(page.url(), `${kestrel.server.origin}/`);
  const columns = await columnsOf(page);
  assert.deepEqual(Object.keys(columns), ['Prospecting', 'Engaging', 'Won', 'Lost']);
  assert.deepEqual(Object.fromEntries(Object.entries(columns).map(([name, keys]) => [name, keys.sort()])),
    { Prospecting: [2, 5, 6, 7], Engaging: [3, 4], Won: [1, 8], Lost: [] });
  assert.match(await page.locator('.board-sum').innerText(), /^8 cards · total /);
  assert.equal(await page.locator('#user').innerText(), 'Administrator');
  const won = cardOf(page, 1);
  assert.equal(await won.locator('.title').innerText(), 'GTX Pro for Cancity');
  assert.equal(await won.locator('.companies').innerText(), 'Cancity');
  assert.equal(await won.locator('.amount strong').innerText(), '1,054');
  assert.match(await won.locator('.facts').innerText(), /Due 1 March 2017/);
  assert.equal(await won.locator('.avatar').innerText(), 'MF');
  assert.equal(await page.locator('.column').nth(2).locator('.column-total').innerText(), 'Total 1,153');
  assert.equal(await page.locator('.column').nth(3).locator('.empty').innerText(), 'No cards');
});

test('filters by what is picked, says so in words, and keeps it over a reload and with the Back button', async (t) => {
  const page = await kestrel.page(t);
  await page.getByLabel('Assigned to').selectOption({ label: 'Anna Snelling (2)' });
  await page.locator('#filter-text').waitFor();
  assert.equal(await page.locator('#filter-text').innerText(), 'Anna Snelling');
  const columns = { Prospecting: [5], Engaging: [4], Won: [], Lost: [] };
  assert.deepEqual(await columnsOf(page), columns);
  await page.getByLabel('Type').selectOption('GTX Pro');
  await page.locator('#filter-text', { hasText: 'Anna Snelling, GTX Pro' }).waitFor();
  assert.deepEqual(await columnsOf(page), { Prospecting: [5], Engaging: [], Won: [], Lost: [] });

  await page.reload();
  await ready(page);
  assert.equal(await page.locator('#filter-text').innerText(), 'Anna Snelling, GTX Pro');
  assert.equal(await page.getByLabel('Type').evaluate((select) => select.selectedOptions[0].text), 'GTX Pro');
  assert.deepEqual(await columnsOf(page), { Prospecting: [5], Engaging: [], Won: [], Lost: [] });

  await page.goBack();
  await page.locator('#filter-text', { hasText: /^Anna Snelling$/ }).waitFor();
  assert.deepEqual(await columnsOf(page), columns);
  await page.getByRole('button', { name: 'Clear filters' }).click();
  await page.locator('#filter-text').waitFor({ state: 'detached' });
  assert.equal((await columnsOf(page)).Won.length, 2);
  assert.equal(await page.getByRole('button', { name: 'Clear filters' }).count(), 0);
});

test('offers the ranges of dates in their groups', async (t) => {
  const page = await kestrel.page(t);
  const groups = await page.getByLabel('Closes').locator('optgroup').evaluateAll(
    (found) => found.map((group) => [group.label, ...[...group.children].map((one) => one.text)].join(' | ')));
  assert.deepEqual(groups, [
    'Now | Today | This Week | This Month | This Quarter | This Year | This Year to Date',
    'Coming | Tomorrow | Next Week | Next Month | Next Quarter | Next Year',
    'Past | Yesterday | Last Week | Last Month | Last Quarter | Last Year', 'Without a date | None']);
  await page.getByLabel('Closes').selectOption('None');
  await page.locator('#filter-text', { hasText: 'None' }).waitFor();
  assert.deepEqual((await columnsOf(page)).Won, []);
});

test('sorts by a key, in its usual order or in the other one', async (t) => {
  const page = await kestrel.page(t);
  const sorted = async (text) => page.locator('.sort-text', { hasText: text }).waitFor();
  await page.getByLabel('Sort by').selectOption('Total Value');
  await sorted('total value, descending');
  assert.deepEqual((await columnsOf(page)).Won, [1, 8]);
  await page.getByLabel('Order').selectOption('Ascending');
  await sorted('total value, ascending');
  assert.deepEqual((await columnsOf(page)).Won, [8, 1]);
  assert.equal(new URL(page.url()).search, '?sort=totalValue&order=forward');
  await page.getByLabel('Sort by').focus();
  await page.getByLabel('Sort by').selectOption('Name');
  await sorted('name, ascending');
  assert.equal(await page.evaluate(() => document.activeElement.id), 'picker-sort', 'the picker keeps the focus');
});

test('shows any text of a record as text', async (t) => {
  const page = await kestrel.page(t);
  const title = cardOf(page, 6).locator('.title');
  assert.equal(await title.innerText(), `GTX Pro for ${hostile}`);
  assert.equal(await page.locator('main img, main b, main script').count(), 0);
  assert.equal(await cardOf(page, 7).locator('.companies').innerText(), rightToLeft);
  assert.equal(await cardOf(page, 7).locator('.companies').evaluate((one) => getComputedStyle(one).direction), 'rtl');
  assert.equal(await cardOf(page, 7).locator('.facts').evaluate((one) => getComputedStyle(one).direction), 'ltr');
  // A word without an end widens neither its card nor the page.
  const long = cardOf(page, 8);
  assert.equal(await long.locator('.title').textContent(), `MG Special for ${veryLong}`);
  const [cardBox, columnBox] = [await long.boundingBox(), await page.locator('.column').nth(2).boundingBox()];
  assert.ok(cardBox.width <= columnBox.width && cardBox.height < 300, JSON.stringify(cardBox));
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth > innerWidth), false);
});

test('can be used in a narrow window', async (t) => {
  const page = await kestrel.page(t, { viewport: { width: 400, height: 800 } });
  assert.equal(await page.evaluate(() => document.documentElement.scrollWidth > innerWidth), false);
  assert.equal(await page.getByLabel('Assigned to').isVisible(), false);
  await page.getByText('Filter and sort').click();
  await page.getByLabel('Assigned to').selectOption({ label: 'Anna Snelling (2)' });
  await page.locator('#filter-text', { hasText: 'Anna Snelling' }).waitFor();
  const box = await page.locator('.column').first().boundingBox();
  assert.ok(box.width > 280 && box.width < 400, JSON.stringify(box));
});

test('says what is wrong with an address, and lets nobody in without the token', async (t) => {
  const page = await kestrel.page(t, { expecting: ['status of 400', 'status of 403', 'status of 404'] });
  await page.goto(`${kestrel.server.origin}/?created=soon`);
  await page.getByRole('alert').getByText('The request means nothing.').waitFor();
  await page.goto(`${kestrel.server.origin}/nowhere`);
  const stranger = await kestrel.browser.newContext();
  const foreign = await stranger.newPage();
  for (const path of ['/', '/record/Opportunity/2', `/?token=${'0'.repeat(64)}`]) {
    await foreign.goto(kestrel.server.origin + path);
    await foreign.getByRole('alert').getByText('kestrel serve').waitFor();
    assert.doesNotMatch(await foreign.innerText('body'), /MG Special|GTX Pro/);
    assert.doesNotMatch(foreign.url(), /token/);
  }
  await stranger.close();
});

test('is opened by a link in another page, keeps no cookie, and lets in other tabs and a reload', async (t) => {
  const elsewhere = createServer((_, response) => response.setHeader('Content-Type', 'text/html')
    .end(`<a href="${kestrel.server.url}">board</a>`)).listen(0, '127.0.0.1');
  t.after(() => elsewhere.close());
  await once(elsewhere, 'listening');
  const stranger = await kestrel.browser.newContext();
  t.after(() => stranger.close());
  const linking = await stranger.newPage();
  await linking.goto(`http://localhost:${elsewhere.address().port}/`);
  await linking.getByRole('link').click();
  await ready(linking);
  await cardOf(linking, 1).waitFor();
  assert.equal(linking.url(), `${kestrel.server.origin}/`);
  assert.deepEqual(await stranger.cookies(), []);
  await linking.reload();
  await cardOf(linking, 1).waitFor();
  const tab = await stranger.newPage();
  await tab.goto(`${kestrel.server.origin}/record/Opportunity/1`);
  await tab.getByRole('heading', { name: 'GTX Pro for Cancity' }).waitFor();
  // A wrong token in a link does not take away the right one.
  await tab.goto(`${kestrel.server.origin}/?token=wrong`);
  await cardOf(tab, 1).waitFor();
});
