// The camera's image that is nearest before the frame, with everybody's box in the group's colour.

class Camera {
  constructor(place, image, canvas, world) {
    Object.assign(this, { place, image, canvas, world });
    image.addEventListener('load', () => this.drawBoxes());
  }

  draw(frame, chosen) {
    const { images } = this.world.data.head;
    const number = images ? Math.floor(frame / images.every) : -1;
    const holder = document.getElementById(`image-${number}`);
    this.place.hidden = !holder?.textContent;
    if (this.place.hidden) {
      return;
    }
    this.chosen = chosen;
    if (this.number !== number) {
      this.number = number;
      this.image.src = `data:image/jpeg;base64,${holder.textContent}`;
    } else {
      this.drawBoxes();
    }
  }

  drawBoxes() {
    const { head, boxesEnd, boxPerson, boxX, boxY, boxWidth, boxHeight } = this.world.data;
    const { pen, width, height } = prepareCanvas(this.canvas);
    const scale = Math.min(width / this.image.naturalWidth, height / this.image.naturalHeight);
    const margin = (width - this.image.naturalWidth * scale) / 2;
    const groupOf = new Map();
    this.world.groupsAt(this.number * head.images.every).forEach((persons, id) => {
      persons.forEach((person) => groupOf.set(person, id));
    });
    const areas = new Map();
    for (let i = this.number === 0 ? 0 : boxesEnd[this.number - 1]; i < boxesEnd[this.number]; ++i) {
      const id = groupOf.get(boxPerson[i]);
      const [left, top, wide, high] = [margin + boxX[i] * scale, boxY[i] * scale, boxWidth[i] * scale, boxHeight[i] * scale];
      pen.strokeStyle = id === undefined ? '#e1e1e1' : colourOf(id);
      pen.lineWidth = id === undefined ? 1 : id === this.chosen ? 4 : 2;
      pen.strokeRect(left, top, wide, high);
      if (id !== undefined) {
        const area = areas.get(id) ?? { id, left, top, bottom: top + high };
        areas.set(id, { id, left: Math.min(area.left, left), top: Math.min(area.top, top), bottom: Math.max(area.bottom, top + high) });
      }
    }
    drawPlates(pen, [...areas.values()], width, height);
  }
}
