// Tells how quickly a report opens and slides in a headless Chromium: REPORT=report.html npm run
// measure. Milliseconds since the page was asked for, except for the steps.
import { mkdtempSync, rmSync, statSync } from 'node:fs';
import { tmpdir } from 'node:os';
import { join, resolve } from 'node:path';
import { pathToFileURL } from 'node:url';
import { chromium } from 'playwright-core';

const profile = mkdtempSync(join(tmpdir(), 'report-measure-'));
const file = resolve(process.env.REPORT);
const context = await chromium.launchPersistentContext(profile, {
  executablePath: process.env.CHROMIUM ?? '/usr/bin/chromium',
  headless: true,
  offline: true,
  viewport: { width: 1280, height: 900 },
  args: ['--no-sandbox', '--disable-gpu', '--no-first-run'],
});
try {
  const page = await context.newPage();
  await page.goto(pathToFileURL(file).href);
  await page.waitForSelector('body[data-ready]', { timeout: 300000 });
  const opened = await page.evaluate(() => ({
    firstPaint: performance.getEntriesByName('first-contentful-paint')[0]?.startTime,
    ...Object.fromEntries(performance.getEntriesByType('mark').map(({ name, startTime }) => [name, startTime])),
  }));
  const step = await page.evaluate(async () => {
    const slider = document.getElementById('slider');
    const times = [];
    for (let i = 0; i < 200; ++i) {
      const start = performance.now();
      slider.value = Math.floor((i * 7919) % Number(slider.max));
      slider.dispatchEvent(new Event('input'));
      times.push(performance.now() - start);
      await new Promise(requestAnimationFrame);
    }
    times.sort((a, b) => a - b);
    return { median: times[100], slowestOf100: times[198] };
  });
  const round = (values) => Object.fromEntries(Object.entries(values).map(([name, ms]) => [name, Math.round(ms * 10) / 10]));
  console.log(JSON.stringify({ megabytes: statSync(file).size / 1e6, opened: round(opened), step: round(step) }, null, 1));
} finally {
  await context.close();
  rmSync(profile, { recursive: true, force: true });
}
