// The family tree of the groups along time: a bar for each group, an arrow where one merged into
// another, a dashed one where one split off; the frames that are wrong above. The program has given
// each group a lane, so that relatives are close to each other.

const laneHeight = 14;
const wrongHeight = 12;
const eventKinds = ['created', 'split', 'merged', 'joined', 'left', 'ended', 'removed'];

class Timeline {
  constructor(canvas, world, statistics, jump) {
    this.canvas = canvas;
    this.world = world;
    this.groups = statistics.groups;
    const { groupId, groupLane } = world.data;
    this.lanes = new Map([...groupId].map((group, i) => [group, groupLane[i]]));
    this.laneCount = [...this.groups.keys()].reduce((most, group) => Math.max(most, this.lanes.get(group) + 1), 0);
    this.ties = this.findTies();
    this.relatives = this.findRelatives();
    canvas.addEventListener('click', (click) => {
      const bar = this.barAt(click.offsetX, click.offsetY);
      jump(this.frameAt(click.offsetX), bar);
    });
  }

  findTies() {
    const { eventKind, eventFrame, eventGroup, eventOther } = this.world.data;
    const ties = [];
    for (let i = 0; i < eventKind.length; ++i) {
      const kind = eventKinds[eventKind[i]];
      if ((kind === 'merged' || kind === 'split') && this.groups.has(eventGroup[i]) && this.groups.has(eventOther[i])) {
        ties.push({ kind, frame: eventFrame[i], from: eventOther[i], to: eventGroup[i] });
      }
    }
    return ties;
  }

  // For each group those that it is tied to directly.
  findRelatives() {
    const relatives = new Map();
    const add = (one, other) => relatives.set(one, (relatives.get(one) ?? new Set()).add(other));
    this.ties.forEach(({ from, to }) => {
      add(from, to);
      add(to, from);
    });
    return relatives;
  }

  column(frame) { return (frame + 0.5) / this.world.frames * this.canvas.clientWidth; }
  row(group) { return wrongHeight + (this.lanes.get(group) + 0.5) * laneHeight; }
  frameAt(column) {
    const frame = Math.floor(column / this.canvas.clientWidth * this.world.frames);
    return Math.max(0, Math.min(this.world.frames - 1, frame));
  }

  barAt(column, row) {
    const lane = Math.floor((row - wrongHeight) / laneHeight);
    const frame = this.frameAt(column);
    const tolerance = this.world.frames / this.canvas.clientWidth * 3;
    for (const group of this.groups.values()) {
      if (this.lanes.get(group.id) === lane && frame >= group.first - tolerance && frame <= group.last + tolerance) {
        return group.id;
      }
    }
    return undefined;
  }

  // The bars change with the page's size only; they are kept as a picture under the cursor.
  draw(frame, chosen) {
    const height = wrongHeight + Math.max(3, this.laneCount) * laneHeight + 4;
    this.canvas.style.height = `${height}px`;
    const prepared = prepareCanvas(this.canvas, height);
    if (!prepared) {
      return;
    }
    const { pen, width } = prepared;
    const colours = pageColours();
    const key = [this.canvas.width, this.canvas.height, chosen, colours.panel].join();
    if (this.key !== key) {
      this.key = key;
      this.drawUndecided(pen, colours, height);
      this.drawVerdicts(pen, colours);
      this.drawBars(pen, colours, chosen);
      this.drawTies(pen, colours, chosen);
      this.picture = document.createElement('canvas');
      this.picture.width = this.canvas.width;
      this.picture.height = this.canvas.height;
      this.picture.getContext('2d').drawImage(this.canvas, 0, 0);
    } else {
      pen.drawImage(this.picture, 0, 0, width, height);
    }
    pen.fillStyle = colours.accent;
    pen.fillRect(this.column(frame) - 1, 0, 2, height);
  }

  // Calls visit(first, last) for each stretch of frames.
  forStretches(isIn, visit) {
    for (let frame = 0, start = -1; frame <= this.world.frames; ++frame) {
      const inside = frame < this.world.frames && isIn(frame);
      if (inside && start < 0) {
        start = frame;
      } else if (!inside && start >= 0) {
        visit(start, frame - 1);
        start = -1;
      }
    }
  }

  // Frames about which the run decided nothing are no frames at which everybody was alone.
  drawUndecided(pen, colours, height) {
    const { isDecided } = this.world.data;
    this.forStretches((frame) => !isDecided[frame], (first, last) => {
      const [left, right] = [this.column(first - 0.5), this.column(last + 0.5)];
      pen.save();
      pen.beginPath();
      pen.rect(left, 0, right - left, height);
      pen.clip();
      pen.strokeStyle = colours.line;
      pen.lineWidth = 2;
      pen.beginPath();
      for (let x = left - height; x < right; x += 8) {
        pen.moveTo(x, height);
        pen.lineTo(x + height, 0);
      }
      pen.stroke();
      pen.restore();
    });
  }

  drawBars(pen, colours, chosen) {
    pen.font = '10px system-ui, sans-serif';
    for (const group of this.groups.values()) {
      const left = this.column(group.first - 0.5);
      const width = Math.max(2, this.column(group.last + 0.5) - left);
      const isKin = chosen === undefined || chosen === group.id || this.relatives.get(chosen)?.has(group.id);
      const height = group.largest > 1 ? laneHeight - 3 : 4;  // nobody was ever with another in it
      pen.fillStyle = colourOf(group.id, isKin ? 1 : 0.35);
      pen.fillRect(left, this.row(group.id) - height / 2, width, height);
      if (chosen === group.id) {
        pen.strokeStyle = colours.ink;
        pen.lineWidth = 1.5;
        pen.strokeRect(left, this.row(group.id) - height / 2, width, height);
      }
      if (group.largest > 1 && width > pen.measureText(group.id).width + 6) {
        pen.fillStyle = isKin ? inkOn(group.id) : colours.ink;
        pen.fillText(group.id, left + 3, this.row(group.id) + 3.5);
      }
    }
  }

  drawTies(pen, colours, chosen) {
    pen.lineWidth = 1.2;
    for (const { kind, frame, from, to } of this.ties) {
      const isKin = chosen === undefined || chosen === from || chosen === to;
      const x = this.column(frame - 0.5);
      const down = Math.sign(this.row(to) - this.row(from));
      const [start, end] = [this.row(from) + down * 5, this.row(to) - down * 5];
      pen.strokeStyle = isKin ? colours.ink : colours.line;
      pen.setLineDash(kind === 'split' ? [3, 2] : []);
      pen.beginPath();
      pen.moveTo(x, start);
      pen.lineTo(x, end);
      pen.stroke();
      pen.setLineDash([]);
      pen.beginPath();
      pen.moveTo(x - 3, end - down * 4);
      pen.lineTo(x, end);
      pen.lineTo(x + 3, end - down * 4);
      pen.stroke();
    }
  }

  drawVerdicts(pen, colours) {
    const { verdicts } = this.world.data;
    if (!verdicts) {
      return;
    }
    const names = [undefined, colours.line, colours.wrong];
    [1, 2].forEach((verdict) => this.forStretches((frame) => verdicts[frame] === verdict, (first, last) => {
      pen.fillStyle = names[verdict];
      const left = this.column(first - 0.5);
      pen.fillRect(left, 1, Math.max(1, this.column(last + 0.5) - left), wrongHeight - 5);
    }));
  }
}
