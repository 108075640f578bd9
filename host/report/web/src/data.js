// The report's data: a head in JSON that names typed arrays, and their deflated bytes in base64.

const noGroup = 0xffffffff;

// What the input calls the people whom it does not number.
const personNames = {};
const nameOf = (person) => personNames[person] ?? String(person);

function bytesOf(base64) {
  if (Uint8Array.fromBase64) {
    return Uint8Array.fromBase64(base64);
  }
  const text = atob(base64);
  const bytes = new Uint8Array(text.length);
  for (let i = 0; i < text.length; ++i) {
    bytes[i] = text.charCodeAt(i);
  }
  return bytes;
}

async function loadData() {
  const head = JSON.parse(document.getElementById('head').textContent);
  Object.assign(personNames, head.names);
  const packed = bytesOf(document.getElementById('body').textContent.trim());
  const stream = new Blob([packed]).stream().pipeThrough(new DecompressionStream('deflate'));
  const buffer = await new Response(stream).arrayBuffer();
  const types = { u8: Uint8Array, i16: Int16Array, i32: Int32Array, u32: Uint32Array, f64: Float64Array };
  const arrays = {};
  for (const { name, type, offset, length } of head.arrays) {
    arrays[name] = new types[type](buffer, offset, length);
  }
  return { head, ...arrays };
}
