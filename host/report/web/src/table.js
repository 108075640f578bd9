// All groups in a table that sorts by a click, or Enter, on a column's head.

function fillTable(table, world, statistics, choose) {
  const { head, frameNumbers } = world.data;
  const distance = (metres) => (Number.isFinite(metres) ? metres.toFixed(2) : '');
  const columns = [
    ['group', (group) => group.id],
    ['from', (group) => frameNumbers[group.first]],
    ['to', (group) => frameNumbers[group.last]],
    ['frames', (group) => group.frames],
    ['largest', (group) => group.largest],
    ['mean size', (group) => distance(group.meanSize())],
    ['people ever', (group) => group.persons.size],
    ['path, m', (group) => distance(group.path)],
    [head.fps ? 'mean speed, m/s' : 'mean speed, m/frame', (group) => distance(group.speed(head.fps))],
    ['mean distance, m', (group) => distance(group.meanDistance())],
  ];
  const header = table.tHead.insertRow();
  for (const [name] of columns) {
    const cell = document.createElement('th');
    cell.textContent = name;
    cell.tabIndex = 0;
    cell.dataset.sortMethod = 'number';
    cell.addEventListener('keydown', (key) => {
      if (key.key === 'Enter') {
        cell.click();
      }
    });
    header.append(cell);
  }
  const body = document.createElement('tbody');
  for (const group of statistics.groups.values()) {
    const row = body.insertRow();
    row.dataset.group = group.id;
    for (const [, value] of columns) {
      row.insertCell().textContent = value(group);
    }
    const chip = document.createElement('span');
    chip.className = 'chip';
    chip.style.background = colourOf(group.id);
    row.cells[0].prepend(chip);
    row.cells[0].dataset.sort = group.id;
    row.addEventListener('click', () => choose(group.first, group.id));
  }
  table.tBodies[0].replaceWith(body);
  new Tablesort(table);
}
