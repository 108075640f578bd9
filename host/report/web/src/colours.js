// Colours of groups, the same as in the pictures that the program draws, and those of the page.

const groupColours = { palette: [], ofGroup: new Map() };

function takeColours({ head, groupId, groupColour }) {
  groupColours.palette = head.palette.map((text) => [1, 3, 5].map((at) => parseInt(text.slice(at, at + 2), 16)));
  groupId.forEach((group, i) => groupColours.ofGroup.set(group, groupColour[i]));
}

const channelsOf = (group) => groupColours.palette[groupColours.ofGroup.get(group) ?? 0];
const colourOf = (group, opacity = 1) => `rgb(${channelsOf(group).join(' ')} / ${opacity})`;

// Black or white, whichever reads better on the group's colour.
function inkOn(group) {
  const [red, green, blue] = channelsOf(group);
  return 0.299 * red + 0.587 * green + 0.114 * blue > 140 ? '#000' : '#fff';
}

function pageColours() {
  const style = getComputedStyle(document.documentElement);
  const names = ['panel', 'ink', 'faint', 'line', 'accent', 'wrong', 'alone', 'edge'];
  return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]));
}

// Sizes a canvas to its place on the page and to the screen's pixels; returns what to draw with, or
// nothing while the canvas has no place.
function prepareCanvas(canvas, height = canvas.clientHeight) {
  const ratio = Math.max(window.devicePixelRatio || 1, document.documentElement.classList.contains('printing') ? 2 : 1);
  const width = canvas.clientWidth;
  if (width === 0 || height === 0) {
    return undefined;
  }
  if (canvas.width !== Math.round(width * ratio) || canvas.height !== Math.round(height * ratio)) {
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(height * ratio);
  }
  const pen = canvas.getContext('2d');
  pen.setTransform(ratio, 0, 0, ratio, 0, 0);
  pen.clearRect(0, 0, width, height);
  return { pen, width, height };
}
