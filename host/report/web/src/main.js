// Puts the parts together: one current frame, one chosen group, everything follows them.

const byId = (id) => document.getElementById(id);

class Report {
  constructor(world) {
    this.world = world;
    this.data = world.data;
    this.frame = 0;
    this.chosen = undefined;
    this.address = new Address(byId('copy-link'));
    const choose = (group) => this.show(this.frame, group);
    this.topView = new TopView(byId('topview'), world, () => this.drawTopView(), choose);
    this.camera = new Camera(byId('camera'), byId('image'), byId('boxes'), world);
    this.sidebar = new Sidebar(world, choose);
    byId('slider').max = Math.max(0, world.frames - 1);
    this.nameItself();
    this.listen();
    this.followAddress();
    performance.mark('people');
    // The numbers of all groups take longer than the first picture.
    setTimeout(() => this.addOverviews());
  }

  addOverviews() {
    const jump = (frame, group) => this.show(frame, group ?? this.chosen);
    this.statistics = gatherStatistics(this.world);
    this.timeline = new Timeline(byId('timeline'), this.world, this.statistics, jump);
    this.sizes = new SizesChart(byId('sizes'), this.statistics, this.data, jump);
    fillTable(byId('table'), this.world, this.statistics, (frame, group) => {
      this.show(frame, group);
      this.showPlayer();
    });
    this.listenToPlaces();
    byId('wrong-hint').hidden = !this.data.verdicts;
    byId('undecided-hint').hidden = !this.data.isDecided.includes(0);
    this.describe();
    this.draw();
    performance.mark('complete');
    document.body.dataset.ready = 'true';
  }

  followAddress() {
    const { frame, group } = this.address.read();
    this.show(Math.max(0, upperBound(this.data.frameNumbers, frame) - 1), group);
  }

  nameItself() {
    const { head } = this.data;
    const title = head.title || `Groups in ${head.input}`;
    document.title = title;
    byId('title').textContent = title;
    byId('origin').textContent = [`${head.groups} of ${head.date}`, head.program].filter(Boolean).join(' · ');
    byId('parameters').hidden = head.parameters.length === 0;
    for (const [label, value] of head.parameters) {
      const row = byId('parameter-table').insertRow();
      row.insertCell().textContent = label;
      row.insertCell().textContent = value;
    }
  }

  describe() {
    const { head, frameNumbers, verdicts } = this.data;
    const parts = [`${head.input}: ${this.world.frames} frames`];
    if (this.world.frames > 0) {
      parts[0] += ` from ${frameNumbers[0]} to ${frameNumbers.at(-1)}`;
    }
    parts.push(`${new Set(this.data.runPerson).size} people`, `${this.statistics.groups.size} groups`);
    if (verdicts) {
      const [wrong, right] = [2, 1].map((verdict) => verdicts.reduce((sum, value) => sum + (value === verdict), 0));
      parts.push(`${wrong} of ${wrong + right} frames that the truth tells about differ from it`);
    }
    if (head.images) {
      const every = head.images.every === 1 ? 'every frame' : `every ${head.images.every} frames`;
      parts.push(`images of ${every}, ${head.images.width} pixels wide at most`);
    }
    byId('summary').textContent = parts.join(', ');
  }

  listen() {
    byId('slider').addEventListener('input', () => this.show(Number(byId('slider').value), this.chosen));
    byId('play').addEventListener('click', () => this.toggle());
    byId('zoom-in').addEventListener('click', () => this.topView.zoomBy(1.5));
    byId('zoom-out').addEventListener('click', () => this.topView.zoomBy(1 / 1.5));
    byId('zoom-reset').addEventListener('click', () => this.topView.resetZoom());
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.restyle());
    window.addEventListener('hashchange', () => this.followAddress());
    window.addEventListener('beforeprint', () => this.dressForPrint(true));
    window.addEventListener('afterprint', () => this.dressForPrint(false));
    document.addEventListener('keydown', (key) => this.onKey(key));
  }

  // Whatever changes the size of a part of the page, it is drawn anew once before the next picture.
  listenToPlaces() {
    let isDue = false;
    const observer = new ResizeObserver(() => {
      if (!isDue) {
        isDue = true;
        requestAnimationFrame(() => {
          isDue = false;
          this.sizes.fit();
          this.draw();
        });
      }
    });
    ['topview', 'camera', 'timeline', 'sizes'].forEach((id) => observer.observe(byId(id)));
  }

  // Paper is white and has a width of its own; what is drawn has to be drawn for it.
  dressForPrint(isPrinting) {
    document.documentElement.classList.toggle('printing', isPrinting);
    this.restyle();
  }

  restyle() {
    this.sizes?.restyle();
    this.sizes?.fit();
    this.draw();
  }

  onKey(key) {
    const isControl = ['BUTTON', 'SELECT', 'TH', 'SUMMARY'].includes(key.target.tagName);
    const stride = key.shiftKey ? 10 : 1;
    const push = 60;
    const actions = {
      ArrowRight: () => this.show(this.frame + stride, this.chosen),
      ArrowLeft: () => this.show(this.frame - stride, this.chosen),
      Home: () => this.show(0, this.chosen),
      End: () => this.show(this.world.frames - 1, this.chosen),
      Escape: () => this.show(this.frame, undefined),
      ' ': () => this.toggle(),
      '+': () => this.topView.zoomBy(1.5),
      '-': () => this.topView.zoomBy(1 / 1.5),
      0: () => this.topView.resetZoom(),
      w: () => this.topView.moveBy(0, push),
      s: () => this.topView.moveBy(0, -push),
      a: () => this.topView.moveBy(push, 0),
      d: () => this.topView.moveBy(-push, 0),
    };
    const isOurs = !key.ctrlKey && !key.metaKey && !key.altKey && !(isControl && key.key === ' ');
    if (actions[key.key] && isOurs && key.target.tagName !== 'SELECT') {
      key.preventDefault();
      actions[key.key]();
    }
  }

  toggle() {
    this.playing = !this.playing;
    byId('play').textContent = this.playing ? '❚❚' : '▶';
    if (this.playing) {
      if (this.frame >= this.world.frames - 1) {
        this.frame = 0;
      }
      this.clock = undefined;
      requestAnimationFrame((time) => this.tick(time));
    }
  }

  tick(time) {
    if (!this.playing) {
      return;
    }
    const usualRate = 10;
    const rate = (this.data.head.fps || usualRate) * Number(byId('speed').value);
    this.clock ??= { time, frame: this.frame };
    const frame = this.clock.frame + Math.floor((time - this.clock.time) / 1000 * rate);
    if (frame !== this.frame) {
      this.show(frame, this.chosen, true);
    }
    if (this.frame >= this.world.frames - 1) {
      this.toggle();
    } else {
      requestAnimationFrame((next) => this.tick(next));
    }
  }

  show(frame, chosen, isPlaying = false) {
    this.frame = Math.max(0, Math.min(this.world.frames - 1, frame));
    if (!isPlaying) {
      this.clock = undefined;
    }
    this.chosen = chosen;
    this.draw();
    if (this.statistics) {
      this.address.follow(this.data.frameNumbers[this.frame], this.chosen);
    }
  }

  // Scrolls only when the player is not in sight as a whole.
  showPlayer() {
    const { top, bottom } = byId('player').getBoundingClientRect();
    if (top < 0 || bottom > window.innerHeight) {
      const isCalm = matchMedia('(prefers-reduced-motion: reduce)').matches;
      byId('player').scrollIntoView({ block: 'start', behavior: isCalm ? 'auto' : 'smooth' });
    }
  }

  draw() {
    if (this.world.frames === 0) {
      return;
    }
    const moment = new Moment(this.world, this.frame);
    this.moment = moment;
    byId('slider').value = this.frame;
    byId('frame').textContent = `frame ${this.data.frameNumbers[this.frame]}`;
    byId('undecided').hidden = moment.isDecided;
    this.drawTopView();
    this.timeline?.draw(this.frame, this.chosen);
    this.camera.draw(this.frame, this.chosen);
    this.sidebar.show(moment, this.chosen);
  }

  drawTopView() {
    if (this.moment) {
      this.topView.draw(this.moment, this.chosen);
    }
  }
}

// The number of values up to the limit in an ascending array.
function upperBound(values, limit) {
  let [low, high] = [0, values.length];
  while (low < high) {
    const middle = (low + high) >> 1;
    values[middle] <= limit ? low = middle + 1 : high = middle;
  }
  return low;
}

loadData().then((data) => {
  takeColours(data);
  return new Report(new World(data));
});
