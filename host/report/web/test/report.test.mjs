// Opens a report in a headless Chromium. REPORT names the file, CHROMIUM the browser.
import assert from 'node:assert/strict';
import { mkdtempSync, rmSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';
import { after, before, test } from 'node:test';
import { chromium } from 'playwright-core';

const profile = mkdtempSync(join(tmpdir(), 'report-test-'));
const problems = [];
const requests = [];
let context;
let page;

before(async () => {
  context = await chromium.launchPersistentContext(profile, {
    executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
    headless: true,
    offline: true,
    viewport: { width: 1280, height: 900 },
    args: ['--no-sandbox', '--disable-gpu', '--no-first-run', '--disable-background-networking',
      '--disable-component-update', '--disable-sync'],
  });
  page = await context.newPage();
  page.on('console', (message) => message.type() === 'error' && problems.push(message.text()));
  page.on('pageerror', (error) => problems.push(String(error)));
  page.on('request', (request) => requests.push(request.url()));
  await page.goto(pathToFileURL(resolve(process.env.REPORT)).href);
  await page.waitForSelector('body[data-ready]', { timeout: 60000 });
});

after(async () => {
  await context?.close();
  rmSync(profile, { recursive: true, force: true });
});

const frameText = () => page.textContent('#frame');
const pictureOf = (id) => page.$eval(id, (canvas) => canvas.toDataURL());
const goTo = (value) => page.$eval('#slider', (slider, to) => {
  slider.value = to;
  slider.dispatchEvent(new Event('input'));
}, value);
const lastFrame = () => page.$eval('#slider', (slider) => Number(slider.max));

test('loads without errors and without asking anybody for anything', () => {
  assert.deepEqual(problems, []);
  assert.deepEqual(requests.filter((url) => !url.startsWith('file:') && !url.startsWith('data:')), []);
});

test('the slider moves people', async () => {
  const middle = Math.floor(await lastFrame() / 2);
  await goTo(middle);
  const [text, picture] = [await frameText(), await pictureOf('#topview')];
  await goTo(middle + 5);
  assert.notEqual(await frameText(), text);
  assert.notEqual(await pictureOf('#topview'), picture);
});

test('people are in boxes on the images, and the address opens a frame with a group', async (t) => {
  if (await page.locator('#image-0').count() === 0) {
    return t.skip('a report without images');
  }
  const [frame, group] = await page.$eval('#table tbody tr', (row) => [row.cells[1].textContent, row.dataset.group]);
  await goTo(await lastFrame());
  const before = await pictureOf('#boxes');
  await page.evaluate((hash) => { location.hash = hash; }, `frame=${frame}&group=${group}`);
  await page.waitForFunction((text) => document.getElementById('frame').textContent === text, `frame ${frame}`);
  assert.equal(await page.textContent('#detail-title'), `Group ${group}`);
  await page.waitForFunction((old) => document.getElementById('boxes').toDataURL() !== old, before);
});

test('keys step, jump and play', async () => {
  await page.keyboard.press('Home');
  const first = await frameText();
  await page.keyboard.press('ArrowRight');
  assert.notEqual(await frameText(), first);
  await page.keyboard.press('ArrowLeft');
  assert.equal(await frameText(), first);
  await page.keyboard.press('Space');
  await page.waitForFunction((text) => document.getElementById('frame').textContent !== text, first);
  await page.keyboard.press('Space');
});

test('a click on the timeline jumps and chooses the group', async () => {
  await page.keyboard.press('Home');
  const before = await frameText();
  const box = await page.locator('#timeline').boundingBox();
  await page.locator('#timeline').click({ position: { x: box.width * 0.75, y: 4 } });
  const after = await page.$eval('#slider', (slider) => Number(slider.value));
  assert.notEqual(await frameText(), before);
  assert.ok(Math.abs(after / await lastFrame() - 0.75) < 0.02, `at ${after}`);
});

test('the table sorts both ways and its rows jump', async () => {
  const column = (index) => page.$$eval(`#table tbody tr td:nth-child(${index})`,
    (cells) => cells.map((cell) => Number(cell.textContent)));
  const path = 8;
  const head = page.locator(`#table th:nth-child(${path})`);
  await head.click();
  const once = await column(path);
  await head.press('Enter');
  const twice = await column(path);
  const ascending = [...once].sort((a, b) => a - b);
  assert.ok(once.length > 1);
  assert.deepEqual([once, twice].map(String).sort(), [ascending, [...ascending].reverse()].map(String).sort());
  await page.locator('#table tbody tr').first().click();
  assert.equal(await page.locator('#detail').isVisible(), true);
  const from = await page.textContent('#table tbody tr.chosen td:nth-child(2)');
  assert.equal(await frameText(), `frame ${from}`);
});

test('dark is another picture, still without errors', async () => {
  const light = await pictureOf('#topview');
  await page.emulateMedia({ colorScheme: 'dark' });
  await page.waitForTimeout(100);
  assert.notEqual(await pictureOf('#topview'), light);
  assert.deepEqual(problems, []);
});
