// The names of groups on plates in their colours: above the group, or near by when another name is
// there already. Areas are { id, left, top, bottom } in pixels.
function drawPlates(pen, areas, width, height) {
  const plateHeight = 16;
  const padding = 4;
  const mostRows = 8;
  const taken = [];
  const within = (value, most) => Math.max(0, Math.min(value, most));
  const isFree = (plate) => taken.every((other) => plate.x >= other.x + other.width
    || other.x >= plate.x + plate.width || Math.abs(plate.y - other.y) >= plateHeight);
  pen.font = '12px system-ui, sans-serif';
  for (const { id, left, top, bottom } of areas) {
    const text = `group ${id}`;
    const plate = { x: 0, y: 0, width: pen.measureText(text).width + 2 * padding };
    plate.x = within(left, width - plate.width);
    for (let row = 0; row <= mostRows; ++row) {
      const away = Math.floor((row % mostRows) / 2) * (plateHeight + 1);
      plate.y = within(row % 2 === 0 ? top - plateHeight - 1 - away : bottom + 1 + away, height - plateHeight);
      if (isFree(plate)) {
        break;
      }
    }
    taken.push(plate);
    pen.fillStyle = colourOf(id);
    pen.fillRect(plate.x, plate.y, plate.width, plateHeight);
    pen.fillStyle = inkOn(id);
    pen.fillText(text, plate.x + padding, plate.y + plateHeight - 4);
  }
}
