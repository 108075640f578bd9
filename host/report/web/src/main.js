// Puts the parts together: one current frame, one chosen group, everything follows them.

const byId = (id) => document.getElementById(id);

class Report {
  constructor(world) {
    this.world = world;
    this.data = world.data;
    this.frame = 0;
    this.chosen = undefined;
    this.topView = new TopView(byId('topview'), world);
    this.camera = new Camera(byId('camera'), byId('image'), byId('boxes'), world);
    byId('slider').max = Math.max(0, world.frames - 1);
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
    this.sizes = new SizesChart(byId('sizes'), this.statistics, this.data.frameNumbers, jump);
    fillTable(byId('table'), this.world, this.statistics, jump);
    byId('wrong-hint').hidden = !this.data.wrong;
    this.describe();
    this.draw();
    performance.mark('complete');
    document.body.dataset.ready = 'true';
  }

  // "#frame=930&group=4" opens the page at a frame, by the input's own number, and with a group.
  followAddress() {
    const wanted = new URLSearchParams(location.hash.slice(1));
    const frame = upperBound(this.data.frameNumbers, Number(wanted.get('frame') ?? NaN)) - 1;
    this.show(Math.max(0, frame), wanted.has('group') ? Number(wanted.get('group')) : undefined);
  }

  describe() {
    const { head, frameNumbers, wrong } = this.data;
    let text = `${head.input}, ${head.groups}: ${this.world.frames} frames`;
    if (this.world.frames > 0) {
      text += ` from ${frameNumbers[0]} to ${frameNumbers.at(-1)}`;
    }
    text += `, ${new Set(this.data.runPerson).size} people, ${this.statistics.groups.size} groups`;
    if (wrong) {
      text += `, ${wrong.reduce((a, b) => a + b, 0)} frames differ from the truth`;
    }
    byId('summary').textContent = text;
  }

  listen() {
    byId('slider').addEventListener('input', () => this.show(Number(byId('slider').value), this.chosen));
    byId('play').addEventListener('click', () => this.toggle());
    window.addEventListener('resize', () => this.draw());
    matchMedia('(prefers-color-scheme: dark)').addEventListener('change', () => this.draw());
    window.addEventListener('hashchange', () => this.followAddress());
    document.addEventListener('keydown', (key) => this.onKey(key));
  }

  onKey(key) {
    const isControl = ['BUTTON', 'SELECT', 'TH'].includes(key.target.tagName);
    const stride = key.shiftKey ? 10 : 1;
    const actions = {
      ArrowRight: () => this.show(this.frame + stride, this.chosen),
      ArrowLeft: () => this.show(this.frame - stride, this.chosen),
      Home: () => this.show(0, this.chosen),
      End: () => this.show(this.world.frames - 1, this.chosen),
      Escape: () => this.show(this.frame, undefined),
      ' ': () => this.toggle(),
    };
    if (actions[key.key] && !(isControl && key.key === ' ') && key.target.tagName !== 'SELECT') {
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
  }

  draw() {
    if (this.world.frames === 0) {
      return;
    }
    byId('slider').value = this.frame;
    byId('frame').textContent = `frame ${this.data.frameNumbers[this.frame]}`;
    this.topView.draw(this.frame, this.chosen);
    this.timeline?.draw(this.frame, this.chosen);
    this.camera.draw(this.frame, this.chosen);
    this.listPresent();
    this.listLately();
    this.showDetail();
  }

  listPresent() {
    const entries = [...this.world.groupsAt(this.frame)].map(([id, persons]) => {
      const item = document.createElement('li');
      const button = document.createElement('button');
      button.type = 'button';
      const chip = document.createElement('span');
      chip.className = 'chip';
      chip.style.background = colourOf(id);
      button.append(chip, `group ${id}: ${persons.sort((a, b) => a - b).join(', ')}`);
      button.addEventListener('click', () => this.show(this.frame, id));
      item.append(button);
      return item;
    });
    byId('present').replaceChildren(...entries);
  }

  listLately() {
    const { eventFrame } = this.data;
    const lines = 8;
    let end = upperBound(eventFrame, this.frame);
    const texts = [];
    for (; end > 0 && texts.length < lines; --end) {
      texts.push(`${this.data.frameNumbers[eventFrame[end - 1]]}: ${this.eventText(end - 1)}`);
    }
    byId('lately').replaceChildren(...texts.map((text) => {
      const item = document.createElement('li');
      item.textContent = text;
      return item;
    }));
  }

  eventText(i) {
    const { eventKind, eventGroup, eventOther, eventPersons, eventPersonsEnd } = this.data;
    const persons = [...eventPersons.subarray(i === 0 ? 0 : eventPersonsEnd[i - 1], eventPersonsEnd[i])].join(', ');
    const kind = eventKinds[eventKind[i]];
    const group = `group ${eventGroup[i]}`;
    const texts = {
      created: `${group} created: ${persons}`,
      split: `${group} split from ${eventOther[i]}`,
      merged: `group ${eventOther[i]} merged into ${eventGroup[i]}`,
      joined: `${persons} joined ${group}`,
      left: `${persons} left ${group}`,
    };
    return texts[kind] ?? `${group} ${kind}`;
  }

  showDetail() {
    const explanation = this.data.head.explanations?.[this.chosen];
    byId('detail').hidden = this.chosen === undefined;
    byId('detail-title').textContent = `Group ${this.chosen}`;
    byId('detail-text').textContent = explanation ?? 'Make the report with --diagnostics to see why.';
    for (const row of document.querySelectorAll('tr.chosen')) {
      row.classList.remove('chosen');
    }
    document.querySelector(`tr[data-group="${this.chosen}"]`)?.classList.add('chosen');
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

loadData().then((data) => new Report(new World(data)));
