// The camera's image that is nearest before the frame, with everybody's box in the group's colour.

class Camera {
  constructor(place, image, canvas, world) {
    Object.assign(this, { place, image, canvas, world, number: -1 });
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

  // The box of everybody in pixels of the canvas.
  boxes(width, height) {
    const { boxesEnd, boxPerson, boxX, boxY, boxWidth, boxHeight } = this.world.data;
    const scale = Math.min(width / this.image.naturalWidth, height / this.image.naturalHeight);
    const margin = (width - this.image.naturalWidth * scale) / 2;
    const boxes = new Map();
    for (let i = this.number === 0 ? 0 : boxesEnd[this.number - 1]; i < boxesEnd[this.number]; ++i) {
      const [left, top] = [margin + boxX[i] * scale, boxY[i] * scale];
      boxes.set(boxPerson[i], { left, top, right: left + boxWidth[i] * scale, bottom: top + boxHeight[i] * scale });
    }
    return boxes;
  }

  drawBoxes() {
    const prepared = prepareCanvas(this.canvas);
    if (!prepared || !this.image.naturalWidth || this.number < 0) {
      return;
    }
    const { pen, width, height } = prepared;
    if (document.documentElement.classList.contains('printing')) {
      // Printers may take a canvas for opaque, so that it would hide the image below.
      const scale = Math.min(width / this.image.naturalWidth, height / this.image.naturalHeight);
      const [wide, high] = [this.image.naturalWidth * scale, this.image.naturalHeight * scale];
      pen.drawImage(this.image, (width - wide) / 2, 0, wide, high);
    }
    const moment = new Moment(this.world, this.number * this.world.data.head.images.every);
    const boxes = this.boxes(width, height);
    const labels = new Labels(pen, width, height);
    const areas = new Map();
    const stroke = ({ left, top, right, bottom }, colour, line, away = 0) => {
      pen.strokeStyle = colour;
      pen.lineWidth = line;
      pen.strokeRect(left - away, top - away, right - left + 2 * away, bottom - top + 2 * away);
    };
    boxes.forEach((box, person) => {
      const id = moment.companyOf.get(person);
      stroke(box, id === undefined ? '#e1e1e1' : colourOf(id), id === undefined ? 1 : id === this.chosen ? 4 : 2);
      if (moment.isWrong.has(person)) {
        pen.setLineDash([4, 3]);
        stroke(box, pageColours().wrong, 2, 3);
        pen.setLineDash([]);
      }
      labels.keepFree(box);
      if (id !== undefined) {
        const corners = [[box.left, box.top], [box.right, box.bottom]];
        const area = areas.get(id);
        areas.set(id, areaAround(area ? [...corners, [area.left, area.top], [area.right, area.bottom]] : corners));
      }
    });
    areas.forEach((area, id) => labels.addPlate(id, area));
  }
}
