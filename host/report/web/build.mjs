// Puts the page, its style, its scripts and the libraries into one file without outside references.
import { existsSync, mkdirSync, readFileSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const read = (path) => readFileSync(join(here, path), 'utf8').trim();
const library = (path) => read(join('node_modules', path)).replace(/\n?\/\/# sourceMappingURL=.*/, '');

// In the order in which they need each other.
const d3 = ['color', 'dispatch', 'ease', 'selection', 'timer', 'interpolate', 'drag', 'transition', 'zoom']
  .map((name) => `d3-${name}`);
const libraries = ['uplot/dist/uPlot.iife.min.js', 'tablesort/dist/tablesort.min.js',
  'tablesort/dist/sorts/tablesort.number.min.js', ...d3.map((name) => `${name}/dist/${name}.min.js`)];
const scripts = ['data', 'world', 'statistics', 'colours', 'labels', 'moment', 'topview', 'camera', 'timeline', 'sizes',
  'table', 'address', 'sidebar', 'main'];

// What is contained, and each licence once.
const titleOf = (name) => {
  const { version, license, author } = JSON.parse(read(`node_modules/${name}/package.json`));
  return `${name} ${version} (${license}, ${typeof author === 'string' ? author : author.name})`;
};
const licences = new Map();
for (const name of ['uplot', 'tablesort', ...d3]) {
  const file = ['LICENSE', 'LICENSE.md', 'LICENCE'].find((path) => existsSync(join(here, 'node_modules', name, path)));
  const text = file ? read(`node_modules/${name}/${file}`) : 'MIT licence';
  licences.set(text, [...(licences.get(text) ?? []), titleOf(name)]);
}
const notices = [...licences].map(([text, names]) => `Contains ${names.join('; ')}.\n\n${text}`)
  .join('\n\n').replaceAll('--', '- -');

// Replaced by functions, since "$&" in a minified library would be taken for a pattern.
const page = read('src/page.html')
  .replace('<!--NOTICES-->', () => `<!-- ${notices} -->`)
  .replace('/*STYLE*/', () => `${library('uplot/dist/uPlot.min.css')}\n${read('src/style.css')}`)
  .replace('/*LIBRARIES*/', () => libraries.map(library).join(';\n'))
  .replace('/*SCRIPTS*/', () => `(() => {\n'use strict';\n${scripts.map((name) => read(`src/${name}.js`)).join('\n\n')}\n})();`);

mkdirSync(join(here, '../assets'), { recursive: true });
writeFileSync(join(here, '../assets/report.html'), `${page}\n`);
