// The number of people, of people in groups and of groups over time.

class SizesChart {
  constructor(place, statistics, frameNumbers, jump) {
    this.place = place;
    const { people, members, groups } = statistics.sizes;
    const indices = people.map((_, i) => i);
    const label = (index) => frameNumbers[index] ?? '';
    const colours = pageColours();
    const axis = { stroke: colours.faint, grid: { stroke: colours.line }, ticks: { stroke: colours.line } };
    const line = (name, stroke) => ({ label: name, stroke, width: 1.5, points: { show: false } });
    this.chart = new uPlot({
      width: place.clientWidth,
      height: 200,
      scales: { x: { time: false } },
      axes: [{ ...axis, values: (_, splits) => splits.map(label) }, axis],
      series: [{ label: 'frame', value: (_, index) => (index === null ? '' : label(index)) },
        line('people', colours.alone), line('in groups', colours.accent), line('groups', '#d9822b')],
    }, [indices, people, members, groups], place);
    this.chart.over.addEventListener('click', () => {
      if (this.chart.cursor.idx !== null) {
        jump(this.chart.cursor.idx);
      }
    });
    window.addEventListener('resize', () => this.chart.setSize({ width: place.clientWidth, height: 200 }));
  }
}
