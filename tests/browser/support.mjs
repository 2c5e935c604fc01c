// What the tests of the page share: databases, the running server, and a browser that minds every complaint.

import assert from 'node:assert/strict';
import { execFileSync, spawn } from 'node:child_process';
import { mkdirSync, mkdtempSync, rmSync, writeFileSync } from 'node:fs';
import { createRequire } from 'node:module';
import { tmpdir } from 'node:os';
import { join } from 'node:path';
import { createInterface } from 'node:readline';
import { after, before } from 'node:test';

const kestrel = process.env.KESTREL_COMMAND;
const { chromium } = createRequire(join(process.env.KESTREL_BROWSER_MODULES, 'package.json'))('playwright-core');

export const hostile = '</script><img src=x onerror="window.hacked=1"><b>bold</b>';
export const rightToLeft = 'مرحبا بالعالم \u202Eevil';
export const veryLong = 'Unbreakable'.repeat(60);

/** Deals of two offices; the names of some companies are hostile. */
const standardFiles = {
  'accounts.csv': ['account,sector,year_established,revenue,employees,office_location,subsidiary_of',
    'Cancity,retail,2001,718.62,2448,United States,', 'Isdom,medical,2002,3178.24,4540,Philipines,Cancity',
    `"${hostile.replaceAll('"', '""')}",medical,2002,1,1,x,`, `${rightToLeft},medical,2002,1,1,x,`,
    `${veryLong},medical,2002,1,1,x,`],
  'products.csv': ['product,series,sales_price', 'GTX Pro,GTX,4821', 'MG Special,MG,55'],
  'sales_teams.csv': ['sales_agent,manager,regional_office', 'Moses Frase,Dustin Brinkmann,Central',
    'Donn Cantrell,Rocco Neubert,East', 'Anna Snelling,Rocco Neubert,East'],
  'sales_pipeline.csv': ['opportunity_id,sales_agent,product,account,deal_stage,engage_date,close_date,close_value',
    'A1,Moses Frase,GTX Pro,Cancity,Won,2016-10-20,2017-03-01,1054', 'A2,Donn Cantrell,MG Special,,Prospecting,,,',
    'A3,Donn Cantrell,GTX Pro,Isdom,Engaging,2016-10-25,,', 'A4,Anna Snelling,MG Special,Cancity,Engaging,2016-10-26,,',
    'A5,Anna Snelling,GTX Pro,Cancity,Prospecting,,,', `A6,Moses Frase,GTX Pro,"${hostile.replaceAll('"', '""')}",Prospecting,,,`,
    `A7,Moses Frase,GTX Pro,${rightToLeft},Prospecting,,,`, `A8,Moses Frase,MG Special,${veryLong},Won,2016-10-20,2017-03-01,99`],
};

const card = ['BEGIN:VCARD', 'VERSION:3.0', 'N:Lovelace;Ada;;;', 'FN:Ada Lovelace', 'ORG:Isdom', 'TITLE:Analyst',
  'EMAIL:ada@example.com', 'TEL:+44 20 1234', 'NOTE:<img src=x onerror="window.hacked=1">', 'END:VCARD', ''].join('\r\n');

const environment = { ...process.env, LANGUAGE: 'en', LC_ALL: 'C.UTF-8', TZ: 'UTC' };

/** A new database, in a folder that goes away with the tests of a file. */
export class Database {
  constructor() {
    this.folder = mkdtempSync(join(tmpdir(), 'kestrel-browser-'));
    this.file = join(this.folder, 'crm.db');
    const exported = join(this.folder, 'export');
    mkdirSync(exported);
    for (const [name, lines] of Object.entries(standardFiles)) writeFileSync(join(exported, name), `${lines.join('\n')}\n`);
    writeFileSync(join(this.folder, 'ada.vcf'), card);
    for (const path of [exported, join(this.folder, 'ada.vcf')])
      execFileSync(kestrel, ['import', path, '--database', this.file], { env: environment });
  }

  /** Runs SQL, as another program that changes the database meanwhile; gives back the rows. */
  sql(statement) {
    const program = 'import json, sqlite3, sys\nd = sqlite3.connect(sys.argv[1])\n'
      + 'rows = d.execute(sys.argv[2]).fetchall()\nd.commit()\nprint(json.dumps(rows))';
    return JSON.parse(execFileSync('python3', ['-c', program, this.file, statement], { env: environment }));
  }

  /** The row of the history that a deal's stay in its stage has. */
  currentStay(key) {
    const [[row]] = this.sql('SELECT history.record FROM Opportunity deal JOIN PipelineStageHistory history '
      + `ON history.id = deal.currentPipelineStageHistoryID WHERE deal.id = ${key}`);
    return JSON.parse(row);
  }

  remove() {
    rmSync(this.folder, { recursive: true, force: true });
  }
}

class Server {
  constructor(child, url) {
    this.child = child;
    this.url = url;
    this.origin = new URL(url).origin;
  }

  static async start(file, user) {
    const child = spawn(kestrel, ['serve', '--database', file, '--user', user], { env: environment, stdio: ['ignore', 'pipe', 'inherit'] });
    const lines = createInterface({ input: child.stdout });
    const url = await new Promise((resolve, reject) => {
      lines.once('line', resolve);
      child.once('exit', (code) => reject(new Error(`kestrel serve ended with ${code}`)));
    });
    return new Server(child, url);
  }

  async stop() {
    if (this.child.exitCode !== null) return this.child.exitCode;
    const ended = new Promise((resolve) => this.child.once('exit', resolve));
    this.child.kill('SIGTERM');
    return ended;
  }
}

/**
 * Prepares a database, a server for the user and a browser for the tests of a file. Gives back what opens a page for
 * one test; a page fails its test by any complaint of the browser, a refusal of the policy included, that the test has
 * not said it expects.
 */
export function prepare(user = 'Administrator') {
  const state = {};
  before(async () => {
    state.database = new Database();
    state.server = await Server.start(state.database.file, user);
    state.browser = await chromium.launch({
      executablePath: process.env.KESTREL_CHROMIUM, args: process.getuid() === 0 ? ['--no-sandbox'] : [],
    });
  });
  after(async () => {
    await state.browser?.close();
    const exitCode = await state.server?.stop();
    state.database?.remove();
    assert.equal(exitCode, 0);
  });

  state.page = async (test, { path = '/', expecting = [], ...options } = {}) => {
    const context = await state.browser.newContext({ viewport: { width: 1280, height: 800 }, ...options });
    const complaints = [];
    context.on('console', (message) => {
      if (['error', 'warning'].includes(message.type())) complaints.push(`${message.text()} ${message.location().url}`);
    });
    context.on('weberror', (problem) => complaints.push(String(problem.error())));
    await context.addInitScript(() => document.addEventListener('securitypolicyviolation',
      (event) => console.error(`policy: ${event.violatedDirective} ${event.blockedURI} ${event.sample}`)));
    const page = await context.newPage();
    page.setDefaultTimeout(15_000);
    await page.goto(state.server.url);
    await ready(page);
    if (path !== '/') {
      await page.goto(state.server.origin + path);
      await ready(page);
    }
    test.after(async () => {
      const hacked = await page.evaluate(() => window.hacked).catch(() => undefined);
      await context.close();
      assert.equal(hacked, undefined, 'a text of a record ran as a program');
      assert.deepEqual(complaints.filter((text) => !expecting.some((known) => text.includes(known))), []);
    });
    return page;
  };
  return state;
}

/** Waits until the page shows what its address names. */
export async function ready(page) {
  await page.locator('main:not([aria-busy]) h1').first().waitFor();
}

export function cardOf(page, key) {
  return page.locator(`.card[data-id="Opportunity/${key}"]`);
}

export function column(page, title) {
  return page.locator('.column', { has: page.locator('h2', { hasText: title }) });
}

/** The keys of the cards by column. */
export function columnsOf(page) {
  return page.evaluate(() => Object.fromEntries([...document.querySelectorAll('.column')].map((one) => [
    one.querySelector('.column-title').textContent,
    [...one.querySelectorAll('.card')].map((item) => Number(item.dataset.id.split('/')[1]))])));
}

/** Waits until the column holds the card, drawn anew. */
export async function waitUntilIn(page, title, key) {
  await column(page, title).locator(`.card:not(.pending)[data-id="Opportunity/${key}"]`).waitFor();
}
