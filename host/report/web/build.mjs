// Puts the page, its style, its scripts and the libraries into one file without outside references.
import { readFileSync, mkdirSync, writeFileSync } from 'node:fs';
import { dirname, join } from 'node:path';
import { fileURLToPath } from 'node:url';

const here = dirname(fileURLToPath(import.meta.url));
const read = (path) => readFileSync(join(here, path), 'utf8').trim();
const library = (path) => read(join('node_modules', path)).replace(/\n?\/\/# sourceMappingURL=.*/, '');

const libraries = ['uplot/dist/uPlot.iife.min.js', 'tablesort/dist/tablesort.min.js',
  'tablesort/dist/sorts/tablesort.number.min.js'];
const scripts = ['data', 'world', 'statistics', 'colours', 'plates', 'topview', 'camera', 'timeline', 'sizes', 'table', 'main'];

const licence = (name) => {
  const { version, author } = JSON.parse(read(`node_modules/${name}/package.json`));
  return `${name} ${version}, MIT licence, ${typeof author === 'string' ? author : author.name}`;
};
const notices = `Contains ${licence('uplot')}; ${licence('tablesort')}.`;

// Replaced by functions, since "$&" in a minified library would be taken for a pattern.
const page = read('src/page.html')
  .replace('<!--NOTICES-->', () => `<!-- ${notices} -->`)
  .replace('/*STYLE*/', () => `${library('uplot/dist/uPlot.min.css')}\n${read('src/style.css')}`)
  .replace('/*LIBRARIES*/', () => libraries.map(library).join(';\n'))
  .replace('/*SCRIPTS*/', () => `(() => {\n'use strict';\n${scripts.map((name) => read(`src/${name}.js`)).join('\n\n')}\n})();`);

mkdirSync(join(here, '../assets'), { recursive: true });
writeFileSync(join(here, '../assets/report.html'), `${page}\n`);
