// Colours of groups, the same as in the pictures that the program draws, and those of the page.

const hueOf = (group) => (group * 137.508) % 360;
const colourOf = (group, opacity = 1) => `hsl(${hueOf(group)} 65% 55% / ${opacity})`;

// Black or white, whichever reads better on the group's colour.
function inkOn(group) {
  const channel = (offset) => {
    const k = (offset + hueOf(group) / 30) % 12;
    return 0.55 - 0.65 * 0.45 * Math.max(-1, Math.min(k - 3, 9 - k, 1));
  };
  return 0.299 * channel(0) + 0.587 * channel(8) + 0.114 * channel(4) > 0.55 ? '#000' : '#fff';
}

function pageColours() {
  const style = getComputedStyle(document.documentElement);
  const names = ['panel', 'ink', 'faint', 'line', 'accent', 'wrong', 'alone'];
  return Object.fromEntries(names.map((name) => [name, style.getPropertyValue(`--${name}`).trim()]));
}

// Sizes a canvas to its place on the page and to the screen's pixels; returns what to draw with.
function prepareCanvas(canvas, height = canvas.clientHeight) {
  const ratio = window.devicePixelRatio || 1;
  const width = canvas.clientWidth;
  if (canvas.width !== Math.round(width * ratio) || canvas.height !== Math.round(height * ratio)) {
    canvas.width = Math.round(width * ratio);
    canvas.height = Math.round(height * ratio);
  }
  const pen = canvas.getContext('2d');
  pen.setTransform(ratio, 0, 0, ratio, 0, 0);
  pen.clearRect(0, 0, width, height);
  return { pen, width, height };
}
