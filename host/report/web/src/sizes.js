// The number of people, of people in groups and of groups over time.

class SizesChart {
  constructor(place, statistics, data, jump) {
    Object.assign(this, { place, data, jump });
    const { people, members, groups } = statistics.sizes;
    // Where nothing was decided there is no number of groups, not even 0.
    const known = (values) => values.map((value, frame) => (data.isDecided[frame] ? value : null));
    this.values = [people.map((_, i) => i), people, known(members), known(groups)];
    this.make();
  }

  make() {
    const label = (index) => this.data.frameNumbers[index] ?? '';
    const colours = pageColours();
    const axis = { stroke: colours.faint, grid: { stroke: colours.line }, ticks: { stroke: colours.line } };
    const line = (name, stroke) => ({ label: name, stroke, width: 1.5, points: { show: false } });
    this.chart?.destroy();
    this.chart = new uPlot({
      ...this.size(),
      scales: { x: { time: false } },
      axes: [{ ...axis, values: (_, splits) => splits.map(label) }, axis],
      series: [{ label: 'frame', value: (_, index) => (index === null ? '' : label(index)) },
        line('people', colours.alone), line('in groups', colours.accent), line('groups', '#d9822b')],
    }, this.values, this.place);
    this.chart.over.addEventListener('click', () => {
      if (this.chart.cursor.idx !== null) {
        this.jump(this.chart.cursor.idx);
      }
    });
  }

  size() { return { width: Math.max(100, this.place.clientWidth), height: 200 }; }
  fit() {
    if (this.chart.width !== this.size().width) {
      this.chart.setSize(this.size());
    }
  }
  restyle() { this.make(); }
}
