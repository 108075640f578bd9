// Short texts beside what they name, off people and off each other; where a crowd leaves no room a
// text is left out. Areas are { left, top, right, bottom } in pixels. The same rule as in films.

class Labels {
  constructor(pen, width, height) {
    Object.assign(this, { pen, width, height, people: [], texts: [] });
  }

  keepFree(area) { this.people.push(area); }

  // The number of a group on a plate; where people are on all sides it may lie on them.
  addPlate(group, area) {
    const height = 16;
    const padding = 4;
    const rings = 3;
    this.pen.font = 'bold 12px system-ui, sans-serif';
    const size = [this.pen.measureText(group).width + 2 * padding, height];
    const place = this.find(size, area, rings, true) ?? this.find(size, area, rings, false);
    if (place) {
      this.texts.push(place);
      this.pen.fillStyle = colourOf(group);
      this.pen.fillRect(place.left, place.top, ...size);
      this.pen.fillStyle = inkOn(group);
      this.pen.fillText(group, place.left + padding, place.bottom - 4);
    }
  }

  // The number of a person close by.
  addName(person, area, ink, rim) {
    const height = 11;
    this.pen.font = '11px system-ui, sans-serif';
    const place = this.find([this.pen.measureText(person).width, height], area, 1, true);
    if (place) {
      this.texts.push(place);
      this.pen.lineWidth = 3;
      this.pen.strokeStyle = rim;
      this.pen.strokeText(person, place.left, place.bottom - 1);
      this.pen.fillStyle = ink;
      this.pen.fillText(person, place.left, place.bottom - 1);
    }
  }

  find([width, height], area, rings, isOffPeople) {
    const gap = 2;
    const [x, y] = [(area.left + area.right - width) / 2, (area.top + area.bottom - height) / 2];
    for (let ring = 0; ring < rings; ++ring) {
      const away = gap + ring * (height + gap);
      const [left, right] = [area.left - width - away, area.right + away];
      const [above, below] = [area.top - height - away, area.bottom + away];
      for (const [at, top] of [[x, above], [x, below], [right, y], [left, y], [right, above], [left, above], [right, below], [left, below]]) {
        const place = { left: at, top, right: at + width, bottom: top + height };
        if (at >= 0 && top >= 0 && place.right <= this.width && place.bottom <= this.height && this.isFree(place, isOffPeople)) {
          return place;
        }
      }
    }
    return undefined;
  }

  isFree(place, isOffPeople) {
    const touches = (other) => other.left < place.right && place.left < other.right && other.top < place.bottom && place.top < other.bottom;
    return !this.texts.some(touches) && !(isOffPeople && this.people.some(touches));
  }
}

const areaAround = (points) => points.reduce((area, [x, y]) => ({
  left: Math.min(area.left, x), right: Math.max(area.right, x),
  top: Math.min(area.top, y), bottom: Math.max(area.bottom, y),
}), { left: Infinity, right: -Infinity, top: Infinity, bottom: -Infinity });
