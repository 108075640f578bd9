// What is so at the frame, in words: the groups, what is wrong, what happened lately, and why.

const listed = (persons) => [...persons].sort((a, b) => a - b).map(nameOf).join(', ');

function itemWith(...content) {
  const item = document.createElement('li');
  item.append(...content);
  return item;
}

class Sidebar {
  constructor(world, choose) {
    const { data } = world;
    this.world = world;
    this.data = data;
    this.choose = choose;
    byId('truth').hidden = !data.verdicts;
  }

  show(moment, chosen) {
    this.listPresent(moment, chosen);
    this.listErrors(moment);
    this.listLately(moment.frame);
    this.showDetail(moment, chosen);
  }

  listPresent(moment, chosen) {
    const groups = [...moment.groups].filter(([, persons]) => persons.length > 1);
    const rests = [...moment.groups].filter(([, persons]) => persons.length === 1);
    const entries = groups.map(([id, persons]) => {
      const button = document.createElement('button');
      button.type = 'button';
      button.setAttribute('aria-pressed', id === chosen);
      const chip = document.createElement('span');
      chip.className = 'chip';
      chip.style.background = colourOf(id);
      const { percent } = this.world.beliefOf(id, moment.frame);
      button.append(chip, `group ${id}: ${listed(persons)}${percent === undefined ? '' : ` · ${percent} %`}`);
      button.addEventListener('click', () => this.choose(id));
      return itemWith(button);
    });
    const alone = moment.places.size - moment.companyOf.size;
    const quiet = [];
    if (!moment.isDecided) {
      quiet.push('Not decided: the run ended, or had not begun, when this frame’s turn came.');
    } else {
      quiet.push(`${groups.length === 0 ? 'no groups; ' : ''}${alone} ${alone === 1 ? 'person' : 'people'} alone`);
      if (rests.length > 0) {
        quiet.push(`left of groups: ${rests.map(([id, persons]) => `${nameOf(persons[0])} (${id})`).join(', ')}`);
      }
    }
    byId('present').replaceChildren(...entries, ...quiet.map((text) => {
      const item = itemWith(text);
      item.className = 'quiet';
      return item;
    }));
  }

  listErrors(moment) {
    if (!moment.verdict) {
      return;
    }
    const texts = { right: 'As in the truth.', unknown: 'The truth does not tell about this frame.',
      wrong: `${moment.errors.length} people are in other company than in truth.` };
    byId('verdict').textContent = moment.isDecided || moment.verdict !== 'unknown' ? texts[moment.verdict] : 'Not decided.';
    const company = (persons) => (persons.length > 0 ? `with ${listed(persons)}` : 'alone');
    byId('errors').replaceChildren(...moment.errors.map(({ person, found, truly }) => {
      const name = document.createElement('b');
      name.textContent = nameOf(person);
      return itemWith(name, `: found ${company(found)}, truly ${company(truly)}`);
    }));
    const truth = [...moment.truth.values()].filter((persons) => persons.length > 1).map(listed);
    byId('true-groups').textContent = truth.length > 0 ? `True groups: ${truth.join(' · ')}` : 'No true groups.';
    byId('true-groups').hidden = moment.verdict === 'unknown';
  }

  listLately(frame) {
    const { eventFrame } = this.data;
    const lines = 8;
    const texts = [];
    for (let end = upperBound(eventFrame, frame); end > 0 && texts.length < lines; --end) {
      texts.push(`${this.data.frameNumbers[eventFrame[end - 1]]}: ${this.eventText(end - 1)}`);
    }
    byId('lately').replaceChildren(...texts.map((text) => itemWith(text)));
  }

  eventText(i) {
    const { eventKind, eventGroup, eventOther, eventPersons, eventPersonsEnd } = this.data;
    const persons = [...eventPersons.subarray(i === 0 ? 0 : eventPersonsEnd[i - 1], eventPersonsEnd[i])].map(nameOf).join(', ');
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

  // What the evidence tells of a group at a frame, and out of which groups it came.
  describe(group, frame) {
    const { since, percent } = this.world.beliefOf(group, frame);
    if (since === undefined) {
      return undefined;
    }
    const { eventKind, eventGroup, eventOther } = this.data;
    const origins = [...eventGroup.keys()].filter((i) => eventGroup[i] === group && eventOther[i] !== noGroup)
      .map((i) => this.eventText(i));
    return [`There since frame ${since}.`, percent === undefined ? undefined : `${percent} % sure that these belong together.`,
      ...new Set(origins)].filter(Boolean).join('\n');
  }

  showDetail(moment, chosen) {
    const explanation = this.data.head.explanations?.[chosen] ?? this.describe(chosen, moment.frame);
    byId('detail').hidden = chosen === undefined;
    byId('detail-title').textContent = `Group ${chosen}`;
    byId('detail-text').textContent = explanation ?? 'Make the report with --diagnostics to see why.';
    for (const row of document.querySelectorAll('tr.chosen')) {
      row.classList.remove('chosen');
    }
    document.querySelector(`tr[data-group="${chosen}"]`)?.classList.add('chosen');
  }
}
