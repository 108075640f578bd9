// Who is where and in which group, frame by frame. Frames are indices from 0; places are metres.

class World {
  constructor(data) {
    this.data = data;
    this.frames = data.head.frames;
    this.restorePlaces();
    this.indexRuns();
    this.indexMembers();
  }

  // Places are stored as steps in centimetres from one frame to the next, run by run.
  restorePlaces() {
    const { runX, runY, runLength, stepX, stepY } = this.data;
    const metre = 100;
    this.x = new Float32Array(stepX.length);
    this.y = new Float32Array(stepY.length);
    this.runOffset = new Uint32Array(runX.length);
    for (let run = 0, at = 0; run < runX.length; ++run) {
      this.runOffset[run] = at;
      let x = runX[run];
      let y = runY[run];
      for (let i = 0; i < runLength[run]; ++i, ++at) {
        x += stepX[at];
        y += stepY[at];
        this.x[at] = x / metre;
        this.y[at] = y / metre;
      }
    }
  }

  // For every frame the runs that cover it, as slices of one array.
  indexRuns() {
    const { runStart, runLength } = this.data;
    [this.runsAt, this.runSlice] = coverIndex(this.frames, runStart.length,
      (run) => runStart[run], (run) => runStart[run] + runLength[run] - 1);
  }

  indexMembers() {
    const { memberFrom, memberTo } = this.data;
    [this.membersAt, this.memberSlice] = coverIndex(this.frames, memberFrom.length,
      (i) => memberFrom[i], (i) => memberTo[i]);
  }

  // Calls visit(person, x, y) for everybody in view.
  forPeople(frame, visit) {
    for (let i = this.runSlice[frame]; i < this.runSlice[frame + 1]; ++i) {
      const run = this.runsAt[i];
      const at = this.runOffset[run] + frame - this.data.runStart[run];
      visit(this.data.runPerson[run], this.x[at], this.y[at]);
    }
  }

  // The members of all groups at a frame: a map from group to persons.
  groupsAt(frame) {
    const groups = new Map();
    for (let i = this.memberSlice[frame]; i < this.memberSlice[frame + 1]; ++i) {
      const member = this.membersAt[i];
      const group = this.data.memberGroup[member];
      if (!groups.has(group)) {
        groups.set(group, []);
      }
      groups.get(group).push(this.data.memberPerson[member]);
    }
    return groups;
  }

  placesAt(frame) {
    const places = new Map();
    this.forPeople(frame, (person, x, y) => places.set(person, [x, y]));
    return places;
  }

  bounds() {
    let [left, right, bottom, top] = [Infinity, -Infinity, Infinity, -Infinity];
    for (let i = 0; i < this.x.length; ++i) {
      left = Math.min(left, this.x[i]);
      right = Math.max(right, this.x[i]);
      bottom = Math.min(bottom, this.y[i]);
      top = Math.max(top, this.y[i]);
    }
    return left <= right ? { left: left - 1, right: right + 1, bottom: bottom - 1, top: top + 1 }
      : { left: 0, right: 10, bottom: 0, top: 10 };
  }
}

// For every frame the spans that cover it: [spans of frame 0, of frame 1, ...] and where each begins.
function coverIndex(frames, count, first, last) {
  const begin = new Uint32Array(frames + 2);
  for (let span = 0; span < count; ++span) {
    for (let frame = first(span); frame <= last(span); ++frame) {
      ++begin[frame + 2];
    }
  }
  for (let frame = 2; frame < begin.length; ++frame) {
    begin[frame] += begin[frame - 1];
  }
  const spans = new Uint32Array(begin[frames + 1]);
  for (let span = 0; span < count; ++span) {
    for (let frame = first(span); frame <= last(span); ++frame) {
      spans[begin[frame + 1]++] = span;
    }
  }
  return [spans, begin];
}
