// What is known of one frame: who is where, who is with whom, and who should be.

class Moment {
  constructor(world, frame) {
    this.frame = frame;
    this.isDecided = world.data.isDecided[frame] === 1;
    this.places = world.placesAt(frame);
    this.groups = world.groupsAt(frame);
    this.groupOf = new Map();
    // Of groups of two and more only: one person left of a group is drawn as quietly as people alone.
    this.companyOf = new Map();
    this.groups.forEach((persons, id) => persons.forEach((person) => {
      this.groupOf.set(person, id);
      if (persons.length > 1) {
        this.companyOf.set(person, id);
      }
    }));
    const verdicts = ['unknown', 'right', 'wrong'];
    this.verdict = world.data.verdicts ? verdicts[world.data.verdicts[frame]] ?? 'unknown' : undefined;
    this.truth = world.truthAt(frame);
    this.errors = this.verdict === 'wrong' ? this.findErrors() : [];
    this.isWrong = new Set(this.errors.map(({ person }) => person));
  }

  // Everybody with other companions than the true ones: { person, found, truly }.
  findErrors() {
    const companions = (groups) => {
      const of = new Map();
      groups.forEach((persons) => persons.forEach((person) => {
        const others = persons.filter((other) => other !== person).sort((a, b) => a - b);
        of.set(person, [...new Set([...(of.get(person) ?? []), ...others])].sort((a, b) => a - b));
      }));
      return of;
    };
    const [found, truly] = [companions(this.groups), companions(this.truth)];
    return [...new Set([...found.keys(), ...truly.keys()])].sort((a, b) => a - b)
      .map((person) => ({ person, found: found.get(person) ?? [], truly: truly.get(person) ?? [] }))
      .filter((error) => error.found.join() !== error.truly.join());
  }

  // The true groups that were not found as they are.
  missedGroups() {
    return [...this.truth.values()].filter((persons) => persons.some((person) => this.isWrong.has(person)));
  }
}
