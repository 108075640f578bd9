// Colours of groups, the same as in the pictures that the program draws, and those of the page.

const hueOf = (group) => (group * 137.508) % 360;
const colourOf = (group, opacity = 1) => `hsl(${hueOf(group)} 65% 55% / ${opacity})`;

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
