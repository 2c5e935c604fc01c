// Cards that are moved to another stage, with the mouse and with the keyboard.

import assert from 'node:assert/strict';
import { test } from 'node:test';
import { cardOf, column, columnsOf, prepare, waitUntilIn } from './support.mjs';

const kestrel = prepare();

async function drag(page, key, title) {
  await cardOf(page, key).hover({ position: { x: 60, y: 50 } });
  await page.mouse.down();
  const target = await column(page, title).boundingBox();
  // Twice: the first movement picks the card up.
  await page.mouse.move(target.x + 40, target.y + 90, { steps: 4 });
  await page.mouse.move(target.x + 60, target.y + 120, { steps: 4 });
  await page.mouse.up();
}

const sheetOf = (page) => page.getByRole('dialog');

test('a card that is dropped on a column asks for the change and does it', async (t) => {
  const page = await kestrel.page(t);
  await drag(page, 2, 'Engaging');
  const sheet = sheetOf(page);
  await sheet.waitFor();
  assert.equal(await sheet.getByLabel('Stage').evaluate((select) => select.selectedOptions[0].text), 'Engaging');
  assert.match(await sheet.getByLabel('Start').inputValue(), /^\d{4}-\d\d-\d\dT\d\d:\d\d$/);
  assert.equal(await sheet.getByLabel('End').inputValue(), '');
  assert.deepEqual((await columnsOf(page)).Engaging[0], 2, 'it shows where it is to go');
  assert.equal(kestrel.database.currentStay(2).stageName, 'Prospecting', 'nothing has happened yet');
  await sheet.getByLabel('Start').fill('2017-03-14T09:30');
  await sheet.getByLabel('Note').fill('Met at the fair');
  await sheet.getByRole('button', { name: 'Move' }).click();
  await waitUntilIn(page, 'Engaging', 2);
  const stay = kestrel.database.currentStay(2);
  assert.equal(stay.stageName, 'Engaging');
  assert.equal(stay.previousStageName, 'Prospecting');
  assert.equal(stay.note, 'Met at the fair');
  assert.equal(stay.createdByUsername, 'Administrator');
  await page.locator('#announcements', { hasText: 'Moved MG Special to Engaging.' }).waitFor({ state: 'attached' });
  assert.equal(await page.evaluate(() => document.activeElement.dataset.id), 'Opportunity/2', 'it keeps the focus');
  assert.equal(await sheet.count(), 0);
});

test('a card that is dropped and not moved after all goes back', async (t) => {
  const page = await kestrel.page(t);
  const before = await columnsOf(page);
  await drag(page, 5, 'Won');
  await sheetOf(page).getByRole('button', { name: 'Cancel' }).click();
  await page.locator('#announcements', { hasText: 'stays where it is' }).waitFor({ state: 'attached' });
  assert.deepEqual(await columnsOf(page), before);
  // Dropped where it was, it is not asked about.
  await drag(page, 5, 'Prospecting');
  assert.equal(await sheetOf(page).count(), 0);
  assert.equal(kestrel.database.currentStay(5).stageName, 'Prospecting');
});

test('the keyboard goes from card to card, moves one and opens one', async (t) => {
  const page = await kestrel.page(t, { path: '/?sort=name' });
  const { Prospecting: prospecting, Engaging: engaging, Won: won } = await columnsOf(page);
  const current = () => page.evaluate(() => Number(document.activeElement.dataset.id?.split('/')[1]));
  assert.equal(await page.locator('.card[tabindex="0"]').count(), 1, 'the Tab key comes to one card');
  await page.locator('.card[tabindex="0"]').focus();
  assert.equal(await current(), prospecting[0]);
  const press = async (key, expected) => {
    await page.keyboard.press(key);
    assert.equal(await current(), expected, key);
  };
  await press('ArrowDown', prospecting[1]);
  await press('ArrowUp', prospecting[0]);
  await press('ArrowUp', prospecting[0]);
  await press('End', prospecting.at(-1));
  await press('Home', prospecting[0]);
  await press('ArrowRight', engaging[0]);
  await press('ArrowRight', won[0]);
  await press('ArrowRight', won[0]);
  await press('ArrowLeft', engaging[0]);
  const outline = await page.evaluate(() => getComputedStyle(document.activeElement).outlineStyle);
  assert.equal(outline, 'solid', 'one sees where the focus is');

  await page.keyboard.press('m');
  const sheet = sheetOf(page);
  await sheet.waitFor();
  assert.match(await sheet.innerText(), /begins another stay/);
  await sheet.getByLabel('Stage').selectOption('Lost');
  await column(page, 'Lost').locator('.card.pending').waitFor();
  await sheet.getByRole('button', { name: 'Move' }).focus();
  await page.keyboard.press('Enter');
  await waitUntilIn(page, 'Lost', engaging[0]);
  assert.equal(kestrel.database.currentStay(engaging[0]).stageName, 'Lost');
  assert.equal(await current(), engaging[0]);

  await page.keyboard.press('M');
  await sheet.waitFor();
  await page.keyboard.press('Escape');
  await sheet.waitFor({ state: 'detached' });
  assert.equal(await current(), engaging[0]);
  await page.keyboard.press('Enter');
  await page.waitForURL('**/record/Opportunity/*');
});

test('an input that is missing is asked for', async (t) => {
  const page = await kestrel.page(t, { expecting: ['status of 422'] });
  await cardOf(page, 1).getByRole('button', { name: /^Move / }).click();
  const sheet = sheetOf(page);
  await sheet.getByLabel('Stage').selectOption('Lost');
  await sheet.getByLabel('Start').fill('');
  await sheet.getByRole('button', { name: 'Move' }).click();
  await sheet.getByRole('alert').getByText('The start is missing.').waitFor();
  await sheet.getByLabel('Start').fill('2017-05-02T10:00');
  await sheet.getByLabel('End').fill('2017-05-01T10:00');
  await sheet.getByRole('button', { name: 'Move' }).click();
  await sheet.getByRole('alert').getByText('The end is before the start.').waitFor();
  assert.equal(kestrel.database.currentStay(1).stageName, 'Won');
  await sheet.getByLabel('End').fill('2017-05-03T10:00');
  await sheet.getByRole('button', { name: 'Move' }).click();
  await waitUntilIn(page, 'Lost', 1);
});

test('a change that is refused is told in words, and the card goes back', async (t) => {
  const page = await kestrel.page(t, { expecting: ['status of 409'] });
  const before = await columnsOf(page);
  // Deleted by somebody else since the board was drawn.
  kestrel.database.sql('UPDATE Opportunity SET record = json_set(record, \'$.deletionDate\', 1) WHERE id = 8');
  await drag(page, 8, 'Engaging');
  await sheetOf(page).getByRole('button', { name: 'Move' }).click();
  await page.getByRole('alert').getByText('The card is not there any more.').waitFor();
  assert.deepEqual(await columnsOf(page), before);
  assert.equal(kestrel.database.currentStay(8).stageName, 'Won');
  assert.equal(await page.evaluate(() => document.activeElement.dataset.id), 'Opportunity/8');
  await page.getByRole('button', { name: 'Dismiss' }).click();
  assert.equal(await page.getByRole('alert').count(), 0);

  kestrel.database.sql('UPDATE PipelineDefinition SET record = json_set(record, \'$.active\', 0)');
  await drag(page, 5, 'Engaging');
  await sheetOf(page).getByRole('button', { name: 'Move' }).click();
  await page.getByRole('alert').getByText('The pipeline is retired.').waitFor();
  assert.deepEqual(await columnsOf(page), before);
  kestrel.database.sql('UPDATE PipelineDefinition SET record = json_set(record, \'$.active\', 1)');
});

test('nothing moves by itself for those who do not want it to', async (t) => {
  const page = await kestrel.page(t, { reducedMotion: 'reduce' });
  await cardOf(page, 5).getByRole('button', { name: /^Move / }).click();
  assert.equal(await sheetOf(page).evaluate((sheet) => getComputedStyle(sheet).animationName), 'none');
  assert.equal(await cardOf(page, 5).evaluate((one) => getComputedStyle(one).transitionDuration), '0s');
});
