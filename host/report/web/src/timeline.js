// The lives of all groups as bars in lanes, with merges and splits, and the wrong frames above.

const laneHeight = 13;
const wrongHeight = 12;
const eventKinds = ['created', 'split', 'merged', 'joined', 'left', 'ended', 'removed'];

class Timeline {
  constructor(canvas, world, statistics, jump) {
    this.canvas = canvas;
    this.world = world;
    this.groups = statistics.groups;
    this.lanes = this.assignLanes();
    this.ties = this.findTies();
    canvas.addEventListener('click', (click) => {
      const bar = this.barAt(click.offsetX, click.offsetY);
      jump(this.frameAt(click.offsetX), bar);
    });
  }

  // Each group takes the first lane that is free again; a frame of space keeps bars apart.
  assignLanes() {
    const free = [];
    const lanes = new Map();
    const gap = Math.max(1, this.world.frames / 300);
    for (const group of [...this.groups.values()].sort((a, b) => a.first - b.first)) {
      let lane = free.findIndex((end) => end + gap < group.first);
      lane = lane < 0 ? free.length : lane;
      free[lane] = group.last;
      lanes.set(group.id, lane);
    }
    this.laneCount = free.length;
    return lanes;
  }

  findTies() {
    const { eventKind, eventFrame, eventGroup, eventOther } = this.world.data;
    const ties = [];
    for (let i = 0; i < eventKind.length; ++i) {
      const kind = eventKinds[eventKind[i]];
      if ((kind === 'merged' || kind === 'split') && this.lanes.has(eventGroup[i]) && this.lanes.has(eventOther[i])) {
        ties.push({ kind, frame: eventFrame[i], from: eventOther[i], to: eventGroup[i] });
      }
    }
    return ties;
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
    const { pen, width } = prepareCanvas(this.canvas, height);
    const colours = pageColours();
    const key = [width, height, chosen, colours.panel].join();
    if (this.key !== key) {
      this.key = key;
      this.drawBars(pen, colours, chosen);
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

  drawBars(pen, colours, chosen) {
    this.drawWrong(pen, colours);
    pen.font = '10px system-ui, sans-serif';
    for (const group of this.groups.values()) {
      const left = this.column(group.first - 0.5);
      const width = Math.max(2, this.column(group.last + 0.5) - left);
      const isFaint = chosen !== undefined && chosen !== group.id;
      pen.fillStyle = colourOf(group.id, isFaint ? 0.45 : 1);
      pen.fillRect(left, this.row(group.id) - laneHeight / 2 + 1.5, width, laneHeight - 3);
      if (width > 24) {
        pen.fillStyle = isFaint ? colours.ink : inkOn(group.id);
        pen.fillText(group.id, left + 3, this.row(group.id) + 3.5);
      }
    }
    for (const tie of this.ties) {
      pen.strokeStyle = colours.faint;
      pen.lineWidth = 1;
      pen.setLineDash(tie.kind === 'split' ? [3, 2] : []);
      const [x, from, to] = [this.column(tie.frame), this.row(tie.from), this.row(tie.to)];
      const tip = Math.sign(to - from) * 4;
      pen.beginPath();
      pen.moveTo(x, from);
      pen.lineTo(x, to);
      pen.moveTo(x - 3, to - tip);
      pen.lineTo(x, to);
      pen.lineTo(x + 3, to - tip);
      pen.stroke();
    }
    pen.setLineDash([]);
  }

  drawWrong(pen, colours) {
    const wrong = this.world.data.wrong;
    if (!wrong) {
      return;
    }
    pen.fillStyle = colours.wrong;
    const width = Math.max(1, this.canvas.clientWidth / this.world.frames);
    for (let frame = 0; frame < wrong.length; ++frame) {
      if (wrong[frame]) {
        pen.fillRect(this.column(frame - 0.5), 1, width, wrongHeight - 5);
      }
    }
  }
}
