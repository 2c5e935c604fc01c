// The pages of records, and what happens when the server is not there any more.

import assert from 'node:assert/strict';
import { test } from 'node:test';
import { cardOf, hostile, prepare, ready } from './support.mjs';

const kestrel = prepare();

test('a card opens its record, and Back returns to it on the board', async (t) => {
  const page = await kestrel.page(t, { path: '/?sort=name' });
  await cardOf(page, 3).locator('.title').click();
  await page.getByRole('heading', { name: 'GTX Pro for Isdom' }).waitFor();
  assert.equal(new URL(page.url()).pathname, '/record/Opportunity/3');
  assert.equal(await page.title(), 'GTX Pro for Isdom – Kestrel');
  assert.match(await page.locator('.panels').innerText(), /stage\s+Engaging/i);
  await page.getByRole('link', { name: 'Isdom', exact: true }).click();
  await page.getByRole('heading', { name: 'Isdom', level: 1 }).waitFor();
  await page.getByRole('link', { name: 'Ada Lovelace' }).click();
  await page.getByRole('heading', { name: 'Ada Lovelace', level: 1 }).waitFor();
  await page.getByRole('link', { name: '← Board' }).click();
  await cardOf(page, 3).waitFor();
  assert.equal(new URL(page.url()).search, '?sort=name');
});

test('a contact shows its details and its activity', async (t) => {
  const page = await kestrel.page(t, { path: '/contacts' });
  await page.getByLabel('Search').fill('lovel');
  await page.getByRole('link', { name: 'Lovelace, Ada' }).click();
  await page.getByRole('heading', { name: 'Ada Lovelace', level: 1 }).waitFor();
  const details = await page.locator('.panels').innerText();
  assert.match(details, /ada@example\.com/);
  assert.match(details, /\+44 20 1234/);
  assert.match(details, /<img src=x onerror="window\.hacked=1">/, 'a note is text');
  assert.match(await page.locator('.activity .totals').innerText(), /0 Emails/);
  await page.reload();
  await page.getByRole('heading', { name: 'Ada Lovelace', level: 1 }).waitFor();
  await page.goto(`${kestrel.server.origin}/contacts?search=nobody`);
  await page.getByText('0 contacts').waitFor();
});

test('any text of a record is text on its page and in the title of the window', async (t) => {
  const page = await kestrel.page(t, { path: '/record/Opportunity/6' });
  assert.equal(await page.locator('h1').innerText(), `GTX Pro for ${hostile}`);
  assert.equal(await page.title(), `GTX Pro for ${hostile} – Kestrel`);
  assert.equal(await page.locator('main img, main b, main script').count(), 0);
  for (const key of [7, 8]) {
    await page.goto(`${kestrel.server.origin}/record/Opportunity/${key}`);
    await ready(page);
    assert.equal(await page.evaluate(() => document.documentElement.scrollWidth > innerWidth), false);
  }
});

test('a record that is not there is told of in words', async (t) => {
  const page = await kestrel.page(t, { expecting: ['status of 400', 'status of 404'] });
  await page.goto(`${kestrel.server.origin}/record/Opportunity/999`);
  await page.getByRole('alert').getByText('It is not there.').waitFor();
  await page.goto(`${kestrel.server.origin}/record/${encodeURIComponent('<img src=x onerror=window.hacked=1>')}`);
  await page.getByRole('alert').getByText('identifier of no record').waitFor();
});

test('a server that has ended is told of in words', async (t) => {
  const page = await kestrel.page(t, { expecting: ['ERR_CONNECTION_REFUSED'] });
  assert.equal(await kestrel.server.stop(), 0);
  await page.getByLabel('Sort by').selectOption('Name');
  await page.getByRole('alert').getByText('The server does not answer.').waitFor();
});
