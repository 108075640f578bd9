// The ground from above: a grid, groups as hulls with traces and numbers, people alone quietly. The
// wheel, fingers and keys zoom and move it.

class TopView {
  constructor(canvas, world, redraw, choose) {
    Object.assign(this, { canvas, world });
    this.bounds = world.bounds();
    this.view = d3.zoomIdentity;
    const closest = 60;
    this.zoom = d3.zoom().scaleExtent([0.5, closest]).on('zoom', ({ transform }) => {
      this.view = transform;
      // While all is in sight, one finger scrolls the page.
      canvas.style.touchAction = transform.k > 1 ? 'none' : 'pan-y';
      redraw();
    });
    d3.select(canvas).call(this.zoom).on('dblclick.zoom', null);
    canvas.style.touchAction = 'pan-y';
    canvas.addEventListener('click', ({ offsetX, offsetY }) => choose(this.groupNear(offsetX, offsetY)));
  }

  zoomBy(factor) { d3.select(this.canvas).call(this.zoom.scaleBy, factor); }
  moveBy(columns, rows) { d3.select(this.canvas).call(this.zoom.translateBy, columns / this.view.k, rows / this.view.k); }
  resetZoom() { d3.select(this.canvas).call(this.zoom.transform, d3.zoomIdentity); }

  draw(moment, chosen) {
    const prepared = prepareCanvas(this.canvas);
    if (!prepared) {
      return;
    }
    const { pen, width, height } = prepared;
    const { left, right, bottom, top } = this.bounds;
    const fitting = Math.min(width / (right - left), height / (top - bottom));
    const offsetX = (width - (right - left) * fitting) / 2;
    const offsetY = (height - (top - bottom) * fitting) / 2;
    this.scale = fitting * this.view.k;
    this.column = (x) => this.view.applyX(offsetX + (x - left) * fitting);
    this.row = (y) => this.view.applyY(height - offsetY - (y - bottom) * fitting);
    this.colours = pageColours();
    this.moment = moment;
    this.drawGrid(pen, width, height);
    const areas = new Map();
    moment.groups.forEach((persons, id) => {
      const places = persons.map((person) => moment.places.get(person)).filter(Boolean);
      if (persons.length > 1 && places.length > 0) {
        areas.set(id, this.drawGroup(pen, id, places, id === chosen));
      }
    });
    moment.missedGroups().forEach((persons) => this.drawTruth(pen, persons));
    this.drawTraces(pen);
    this.drawPeople(pen);
    this.drawLabels(pen, areas, width, height);
    this.drawScaleBar(pen, width, height);
  }

  drawGrid(pen, width, height) {
    const usual = 5;
    const step = this.scale * usual > 400 ? 1 : this.scale * usual < 12 ? 50 : usual;
    const { left, right, bottom, top } = this.bounds;
    const [reachX, reachY] = [right - left, top - bottom];
    pen.strokeStyle = this.colours.line;
    pen.lineWidth = 1;
    pen.beginPath();
    for (let x = Math.floor((left - 2 * reachX) / step) * step; x <= right + 2 * reachX; x += step) {
      pen.moveTo(this.column(x), 0);
      pen.lineTo(this.column(x), height);
    }
    for (let y = Math.floor((bottom - 2 * reachY) / step) * step; y <= top + 2 * reachY; y += step) {
      pen.moveTo(0, this.row(y));
      pen.lineTo(width, this.row(y));
    }
    pen.stroke();
  }

  // A line around places; returns the area that it takes.
  trackHull(pen, places, radius) {
    const corners = 16;
    const outline = [];
    for (const [x, y] of places) {
      for (let i = 0; i < corners; ++i) {
        const angle = 2 * Math.PI * i / corners;
        outline.push([this.column(x + radius * Math.cos(angle)), this.row(y + radius * Math.sin(angle))]);
      }
    }
    const hull = convexHull(outline);
    pen.beginPath();
    hull.forEach(([x, y], i) => (i === 0 ? pen.moveTo(x, y) : pen.lineTo(x, y)));
    pen.closePath();
    return areaAround(hull);
  }

  drawGroup(pen, id, places, isChosen) {
    const area = this.trackHull(pen, places, 0.6);
    pen.fillStyle = colourOf(id, 0.25);
    pen.fill();
    pen.strokeStyle = this.colours.edge;
    pen.lineWidth = isChosen ? 6 : 3;
    pen.stroke();
    pen.strokeStyle = colourOf(id);
    pen.lineWidth = isChosen ? 4.5 : 2;
    pen.stroke();
    return area;
  }

  drawTruth(pen, persons) {
    const places = persons.map((person) => this.moment.places.get(person)).filter(Boolean);
    if (places.length > 0) {
      this.trackHull(pen, places, 0.85);
      pen.setLineDash([5, 4]);
      pen.strokeStyle = this.colours.wrong;
      pen.lineWidth = 1.5;
      pen.stroke();
      pen.setLineDash([]);
    }
  }

  drawTraces(pen) {
    const length = 40;
    const { frame, companyOf } = this.moment;
    const traces = new Map();
    for (let past = Math.max(0, frame - length); past <= frame; ++past) {
      this.world.forPeople(past, (person, x, y) => {
        if (companyOf.has(person)) {
          traces.has(person) ? traces.get(person).push(x, y) : traces.set(person, [x, y]);
        }
      });
    }
    pen.lineWidth = 1.5;
    for (const [person, trace] of traces) {
      pen.strokeStyle = colourOf(companyOf.get(person), 0.6);
      pen.beginPath();
      for (let i = 0; i < trace.length; i += 2) {
        pen.lineTo(this.column(trace[i]), this.row(trace[i + 1]));
      }
      pen.stroke();
    }
  }

  radius() { return Math.max(3, Math.min(14, 0.25 * this.scale)); }

  drawPeople(pen) {
    const { places, groupOf, companyOf, isWrong } = this.moment;
    const radius = this.radius();
    const ring = (x, y, size, colour, width) => {
      pen.beginPath();
      pen.arc(this.column(x), this.row(y), size, 0, 2 * Math.PI);
      pen.strokeStyle = colour;
      pen.lineWidth = width;
      pen.stroke();
    };
    for (const [person, [x, y]] of places) {
      const group = companyOf.get(person);
      if (group === undefined) {
        const last = groupOf.get(person);
        ring(x, y, radius - 0.5, last === undefined ? this.colours.alone : colourOf(last), 1.2);
      } else {
        ring(x, y, radius, this.colours.edge, 1.5);
        pen.fillStyle = colourOf(group);
        pen.fill();
      }
      if (isWrong.has(person)) {
        ring(x, y, radius + 3, this.colours.wrong, 2);
      }
    }
  }

  drawLabels(pen, areas, width, height) {
    const { places, companyOf, isWrong } = this.moment;
    const radius = this.radius();
    const labels = new Labels(pen, width, height);
    const areaOf = ([x, y]) => areaAround([[this.column(x) - radius, this.row(y) - radius], [this.column(x) + radius, this.row(y) + radius]]);
    const isLoud = (person) => companyOf.has(person) || isWrong.has(person);
    places.forEach((place) => labels.keepFree(areaOf(place)));
    areas.forEach((area, id) => labels.addPlate(id, area));
    for (const loud of [true, false]) {
      places.forEach((place, person) => {
        if (isLoud(person) === loud) {
          labels.addName(nameOf(person), areaOf(place), loud ? this.colours.ink : this.colours.faint, this.colours.panel);
        }
      });
    }
  }

  // The group of the person at a place of the canvas; none when nobody is there.
  groupNear(column, row) {
    const reach = this.radius() + 6;
    for (const [person, [x, y]] of this.moment?.places ?? []) {
      if (Math.hypot(this.column(x) - column, this.row(y) - row) < reach) {
        return this.moment.groupOf.get(person);
      }
    }
    return undefined;
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
