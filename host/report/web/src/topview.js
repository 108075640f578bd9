// The ground from above: a grid, everybody with a trace, groups as hulls with labels.

class TopView {
  constructor(canvas, world) {
    this.canvas = canvas;
    this.world = world;
    this.bounds = world.bounds();
  }

  draw(frame, chosen) {
    const { pen, width, height } = prepareCanvas(this.canvas);
    const { left, right, bottom, top } = this.bounds;
    this.scale = Math.min(width / (right - left), height / (top - bottom));
    const offsetX = (width - (right - left) * this.scale) / 2;
    const offsetY = (height - (top - bottom) * this.scale) / 2;
    this.column = (x) => offsetX + (x - left) * this.scale;
    this.row = (y) => height - offsetY - (y - bottom) * this.scale;
    this.colours = pageColours();
    this.drawGrid(pen, width, height);
    const groups = this.world.groupsAt(frame);
    const places = this.world.placesAt(frame);
    const groupOf = new Map();
    groups.forEach((persons, id) => persons.forEach((person) => groupOf.set(person, id)));
    this.named = [];
    groups.forEach((persons, id) => this.drawGroup(pen, id, persons.map((p) => places.get(p)).filter(Boolean), id === chosen));
    this.drawTraces(pen, frame, groupOf, places);
    this.drawPeople(pen, groupOf, places);
    drawPlates(pen, this.named, width, height);
    this.drawScaleBar(pen, width, height);
  }

  drawGrid(pen, width, height) {
    const step = 5;
    pen.strokeStyle = this.colours.line;
    pen.lineWidth = 1;
    pen.beginPath();
    for (let x = Math.ceil(this.bounds.left / step) * step; x <= this.bounds.right; x += step) {
      pen.moveTo(this.column(x), 0);
      pen.lineTo(this.column(x), height);
    }
    for (let y = Math.ceil(this.bounds.bottom / step) * step; y <= this.bounds.top; y += step) {
      pen.moveTo(0, this.row(y));
      pen.lineTo(width, this.row(y));
    }
    pen.stroke();
  }

  drawGroup(pen, id, places, isChosen) {
    const radius = 0.6;
    const corners = 16;
    const outline = [];
    for (const [x, y] of places) {
      for (let i = 0; i < corners; ++i) {
        const angle = 2 * Math.PI * i / corners;
        outline.push([this.column(x + radius * Math.cos(angle)), this.row(y + radius * Math.sin(angle))]);
      }
    }
    const hull = convexHull(outline);
    if (hull.length === 0) {
      return;
    }
    pen.beginPath();
    hull.forEach(([x, y], i) => (i === 0 ? pen.moveTo(x, y) : pen.lineTo(x, y)));
    pen.closePath();
    pen.fillStyle = colourOf(id, 0.25);
    pen.fill();
    pen.strokeStyle = colourOf(id);
    pen.lineWidth = isChosen ? 4 : 2;
    pen.stroke();
    const [columns, rows] = [hull.map(([x]) => x), hull.map(([, y]) => y)];
    this.named.push({ id, left: Math.min(...columns), top: Math.min(...rows), bottom: Math.max(...rows) });
  }

  drawTraces(pen, frame, groupOf, places) {
    const length = 40;
    const traces = new Map();
    for (let past = Math.max(0, frame - length); past <= frame; ++past) {
      this.world.forPeople(past, (person, x, y) => {
        if (places.has(person)) {
          traces.has(person) ? traces.get(person).push(x, y) : traces.set(person, [x, y]);
        }
      });
    }
    pen.lineWidth = 1.5;
    for (const [person, trace] of traces) {
      pen.strokeStyle = groupOf.has(person) ? colourOf(groupOf.get(person), 0.6) : this.colours.alone;
      pen.beginPath();
      for (let i = 0; i < trace.length; i += 2) {
        pen.lineTo(this.column(trace[i]), this.row(trace[i + 1]));
      }
      pen.stroke();
    }
  }

  drawPeople(pen, groupOf, places) {
    const radius = Math.max(3, 0.25 * this.scale);
    for (const [person, [x, y]] of places) {
      pen.beginPath();
      pen.arc(this.column(x), this.row(y), radius, 0, 2 * Math.PI);
      pen.fillStyle = groupOf.has(person) ? colourOf(groupOf.get(person)) : this.colours.alone;
      pen.fill();
      this.write(pen, person, this.column(x) + radius + 2, this.row(y) + 4, '11px system-ui, sans-serif');
    }
  }

  drawScaleBar(pen, width, height) {
    const limit = 0.25 * width / this.scale;
    const power = 10 ** Math.floor(Math.log10(limit));
    const length = [5, 2, 1].find((digit) => digit * power <= limit) * power;
    const [right, row] = [width - 12, height - 12];
    const left = right - length * this.scale;
    pen.strokeStyle = this.colours.ink;
    pen.lineWidth = 2;
    pen.beginPath();
    pen.moveTo(left, row - 5);
    pen.lineTo(left, row);
    pen.lineTo(right, row);
    pen.lineTo(right, row - 5);
    pen.stroke();
    this.write(pen, `${length} m`, left + 4, row - 5, '12px system-ui, sans-serif');
  }

  write(pen, text, x, y, font) {
    pen.font = font;
    pen.lineWidth = 3;
    pen.strokeStyle = this.colours.panel;
    pen.strokeText(text, x, y);
    pen.fillStyle = this.colours.ink;
    pen.fillText(text, x, y);
  }
}

// Andrew's monotone chain.
function convexHull(points) {
  const sorted = [...points].sort((a, b) => a[0] - b[0] || a[1] - b[1]);
  const turn = (o, a, b) => (a[0] - o[0]) * (b[1] - o[1]) - (a[1] - o[1]) * (b[0] - o[0]);
  const half = (list) => {
    const chain = [];
    for (const point of list) {
      while (chain.length > 1 && turn(chain.at(-2), chain.at(-1), point) <= 0) {
        chain.pop();
      }
      chain.push(point);
    }
    chain.pop();
    return chain;
  };
  return [...half(sorted), ...half(sorted.reverse())];
}
