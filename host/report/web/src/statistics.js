// Numbers about every group: when, how many, how far, how fast, how close.

class GroupStatistics {
  constructor(id) {
    this.id = id;
    this.first = Infinity;
    this.last = -Infinity;
    this.frames = 0;
    this.memberFrames = 0;
    this.largest = 0;
    this.persons = new Set();
    this.path = 0;
    this.steps = 0;
    this.distances = 0;
    this.framesWithPairs = 0;
  }

  addFrame(frame, persons, places, before) {
    this.first = Math.min(this.first, frame);
    this.last = Math.max(this.last, frame);
    ++this.frames;
    this.memberFrames += persons.length;
    this.largest = Math.max(this.largest, persons.length);
    persons.forEach((person) => this.persons.add(person));
    this.addStep(persons, places, before);
    this.addDistances(persons, places);
  }

  // The mean way of those members who were in view a frame before.
  addStep(persons, places, before) {
    let way = 0;
    let count = 0;
    for (const person of persons) {
      const [here, there] = [places.get(person), before.get(person)];
      if (here && there) {
        way += Math.hypot(here[0] - there[0], here[1] - there[1]);
        ++count;
      }
    }
    if (count > 0 && this.frames > 1) {
      this.path += way / count;
      ++this.steps;
    }
  }

  addDistances(persons, places) {
    const known = persons.map((person) => places.get(person)).filter(Boolean);
    let sum = 0;
    for (let i = 0; i < known.length; ++i) {
      for (let j = 0; j < i; ++j) {
        sum += Math.hypot(known[i][0] - known[j][0], known[i][1] - known[j][1]);
      }
    }
    if (known.length > 1) {
      this.distances += sum / (known.length * (known.length - 1) / 2);
      ++this.framesWithPairs;
    }
  }

  meanSize() { return this.memberFrames / this.frames; }
  speed(fps) { return this.steps > 0 ? this.path / this.steps * (fps || 1) : NaN; }
  meanDistance() { return this.framesWithPairs > 0 ? this.distances / this.framesWithPairs : NaN; }
}

// All groups by id, and for every frame the number of groups and of people in them.
function gatherStatistics(world) {
  const groups = new Map();
  const sizes = { groups: [], members: [], people: [] };
  let before = new Map();
  for (let frame = 0; frame < world.frames; ++frame) {
    const places = world.placesAt(frame);
    const present = world.groupsAt(frame);
    const inGroups = new Set();
    for (const [id, persons] of present) {
      if (!groups.has(id)) {
        groups.set(id, new GroupStatistics(id));
      }
      groups.get(id).addFrame(frame, persons, places, before);
      persons.forEach((person) => inGroups.add(person));
    }
    sizes.groups.push(present.size);
    sizes.members.push(inGroups.size);
    sizes.people.push(places.size);
    before = places;
  }
  return { groups: new Map([...groups].sort((a, b) => a[0] - b[0])), sizes };
}
