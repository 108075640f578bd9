// Who is where and in which group, frame by frame. Frames are indices from 0; places are metres on
// the ground, turned as the camera sees it.

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
    const [xOfX, xOfY, yOfX, yOfY] = this.data.head.turn;
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
        this.x[at] = (xOfX * x + xOfY * y) / metre;
        this.y[at] = (yOfX * x + yOfY * y) / metre;
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
    const { verdicts, truthFrom, truthTo } = this.data;
    if (verdicts) {
      [this.truthsAt, this.truthSlice] = coverIndex(this.frames, truthFrom.length,
        (i) => truthFrom[i], (i) => truthTo[i]);
    }
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
    return this.gather(frame, this.membersAt, this.memberSlice, this.data.memberGroup, this.data.memberPerson);
  }

  // The same of the true groups; none without truth.
  truthAt(frame) {
    return this.truthsAt
      ? this.gather(frame, this.truthsAt, this.truthSlice, this.data.truthGroup, this.data.truthPerson) : new Map();
  }

  gather(frame, spansAt, slice, groupOfSpan, personOfSpan) {
    const groups = new Map();
    for (let i = slice[frame]; i < slice[frame + 1]; ++i) {
      const group = groupOfSpan[spansAt[i]];
      if (!groups.has(group)) {
        groups.set(group, []);
      }
      groups.get(group).push(personOfSpan[spansAt[i]]);
    }
    return groups;
  }

  // What the evidence says of a group at a frame: since which frame of the input it is there, and how
  // sure that is in percent; nothing of groups of the process.
  beliefOf(group, frame) {
    if (!this.beliefs) {
      const { sinceGroup, sinceFrame, beliefGroup, beliefFrame, beliefPercent } = this.data;
      this.since = new Map([...sinceGroup].map((id, i) => [id, sinceFrame[i]]));
      this.beliefs = new Map();
      beliefGroup.forEach((id, i) => {
        if (!this.beliefs.has(id)) {
          this.beliefs.set(id, { frames: [], percents: [] });
        }
        this.beliefs.get(id).frames.push(beliefFrame[i]);
        this.beliefs.get(id).percents.push(beliefPercent[i]);
      });
    }
    const known = this.beliefs.get(group);
    return { since: this.since.get(group), percent: known?.percents[upperBound(known.frames, frame) - 1] };
  }

  placesAt(frame) {
    const places = new Map();
    this.forPeople(frame, (person, x, y) => places.set(person, [x, y]));
    return places;
  }

  // The ground where people are, without the few who are far from all others.
  bounds() {
    const sides = (values) => {
      const most = 20000;
      const stride = Math.max(1, Math.floor(values.length / most));
      const sorted = values.filter((value, i) => i % stride === 0).sort();
      const at = (part) => sorted[Math.floor(part * (sorted.length - 1))];
      const room = 0.5 * (at(0.99) - at(0.01)) + 1;
      return [Math.max(sorted[0], at(0.01) - room), Math.min(sorted.at(-1), at(0.99) + room)];
    };
    if (this.x.length === 0) {
      return { left: 0, right: 10, bottom: 0, top: 10 };
    }
    const [[left, right], [bottom, top]] = [sides(this.x), sides(this.y)];
    return { left: left - 1, right: right + 1, bottom: bottom - 1, top: top + 1 };
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
