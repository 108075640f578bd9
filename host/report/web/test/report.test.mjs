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

test('the address follows the moment, and a copied link opens it', async () => {
  await goTo(Math.floor(await lastFrame() / 3));
  const number = (await frameText()).replace('frame ', '');
  await page.waitForFunction((hash) => location.hash.startsWith(hash), `#frame=${number}`);
  await page.locator('#copy-link').click();
  await page.waitForFunction(() => document.getElementById('copy-link').textContent === 'Copied');
});

test('the wheel, the keys and dragging zoom and move the ground, and 0 shows all again', async () => {
  const all = await pictureOf('#topview');
  const changed = (before) => page.waitForFunction((old) => document.getElementById('topview').toDataURL() !== old, before);
  const box = await page.locator('#topview').boundingBox();
  await page.mouse.move(box.x + box.width / 2, box.y + box.height / 2);
  await page.mouse.wheel(0, -300);
  await changed(all);
  const close = await pictureOf('#topview');
  await page.mouse.down();
  await page.mouse.move(box.x + box.width / 2 + 80, box.y + box.height / 2 + 40, { steps: 4 });
  await page.mouse.up();
  await changed(close);
  const moved = await pictureOf('#topview');
  await page.keyboard.press('d');
  await changed(moved);
  await page.keyboard.press('0');
  await page.waitForFunction((old) => document.getElementById('topview').toDataURL() === old, all);
  await page.keyboard.press('+');
  await changed(all);
  await page.locator('#zoom-reset').click();
  await page.waitForFunction((old) => document.getElementById('topview').toDataURL() === old, all);
});

test('who is wrong is named with the true company', async (t) => {
  if (await page.locator('#truth').isHidden()) {
    return t.skip('a report without truth');
  }
  const [wrong, right] = await page.evaluate(() => {
    const frames = [...Array(Number(document.getElementById('slider').max) + 1).keys()];
    const verdictAt = (frame) => {
      const slider = document.getElementById('slider');
      slider.value = frame;
      slider.dispatchEvent(new Event('input'));
      return document.getElementById('verdict').textContent;
    };
    return [frames.find((frame) => verdictAt(frame).includes('other company')), frames.find((frame) => verdictAt(frame) === 'As in the truth.')];
  });
  assert.ok(wrong !== undefined && right !== undefined, 'the scene has frames of both kinds');
  await goTo(right);
  assert.equal(await page.locator('#errors li').count(), 0);
  assert.equal(await page.textContent('#verdict'), 'As in the truth.');
  await goTo(wrong);
  const errors = await page.$$eval('#errors li', (items) => items.map((item) => item.textContent));
  assert.ok(errors.length > 0);
  errors.forEach((error) => assert.match(error, /^\d+: found (alone|with [\d, ]+), truly (alone|with [\d, ]+)$/));
});

test('the end of the run is not decided instead of everybody alone', async () => {
  await goTo(await lastFrame());
  assert.equal(await page.locator('#undecided').isVisible(), true);
  assert.match(await page.textContent('#present'), /^Not decided/);
  await goTo(Math.floor(await lastFrame() / 2));
  assert.equal(await page.locator('#undecided').isVisible(), false);
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
  await page.waitForFunction(() => document.getElementById('player').getBoundingClientRect().top >= -1);
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

test('any width does without errors, and a phone needs no sideways scrolling', async () => {
  for (const width of [1600, 700, 360, 200, 1280]) {
    await page.setViewportSize({ width, height: 740 });
    await page.waitForTimeout(60);
    const [content, window] = await page.evaluate(() => [document.documentElement.scrollWidth, innerWidth]);
    assert.ok(width < 360 || content <= window, `${content} pixels of content in ${window}`);
  }
  assert.deepEqual(problems, []);
});

test('printing gives whole pages', async () => {
  const before = await page.locator('#topview').boundingBox();
  const pdf = await page.pdf({ format: 'A4', printBackground: true });
  const pages = pdf.toString('latin1').match(/\/Type\s*\/Page[^s]/g).length;
  const rows = await page.locator('#table tbody tr').count();
  assert.ok(pages >= 2 && pages <= 4 + rows / 20, `${pages} pages`);
  assert.deepEqual(await page.locator('#topview').boundingBox(), before);
  assert.deepEqual(problems, []);
});
