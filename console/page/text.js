// Foreign texts: names, values and alert texts may hold anything.
//
// In JSON a text is a string, or {base64} when its bytes are not UTF-8. It is kept as it came, shown
// with its control characters visible, and goes back unchanged.

const steers = /[\u0000-\u001f\u007f-\u009f\u200e\u200f\u2028-\u202e\u2066-\u2069]/g;

function bytesOf(text) {
  if (typeof text === 'string') return new TextEncoder().encode(text);
  return Uint8Array.from(atob(text.base64), (c) => c.charCodeAt(0));
}

const hex = (n, width) => n.toString(16).padStart(width, '0');

// Fit to be shown: one way to read it.
export function shown(text) {
  if (text === undefined || text === null) return '';
  if (typeof text !== 'string') {
    return [...bytesOf(text)]
      .map((b) => (b >= 0x20 && b < 0x7f ? String.fromCharCode(b) : '\\x' + hex(b, 2)))
      .join('');
  }
  return text.replace(steers, (c) => {
    const names = { '\n': '\\n', '\r': '\\r', '\t': '\\t' };
    const code = c.charCodeAt(0);
    return names[c] || (code < 0x80 ? '\\x' + hex(code, 2) : '\\u' + hex(code, 4));
  });
}

// What somebody said: white space at the ends says nothing.
export const told = (text) => shown(typeof text === 'string' ? text.trim() : text);

// For a path or a query: every byte comes through.
export function encoded(text) {
  return [...bytesOf(text)]
    .map((b) => (/[A-Za-z0-9_.~-]/.test(String.fromCharCode(b)) && b < 0x80
      ? String.fromCharCode(b) : '%' + hex(b, 2)))
    .join('');
}

// The way back, of a path's part: bytes that are no UTF-8 become {base64} again.
export function decoded(part) {
  const bytes = [];
  for (let i = 0; i < part.length; i += 1) {
    if (part[i] === '%') {
      bytes.push(parseInt(part.slice(i + 1, i + 3), 16));
      i += 2;
    } else {
      bytes.push(part.charCodeAt(i));
    }
  }
  try {
    return new TextDecoder('utf-8', { fatal: true, ignoreBOM: true })
      .decode(Uint8Array.from(bytes));
  } catch {
    return { base64: btoa(String.fromCharCode(...bytes)) };
  }
}

// The same text, as a key. Names are compared without regard to case.
export function keyOf(text) {
  return encoded(text).replace(/[A-Z]/g, (c) => c.toLowerCase());
}

export const isSame = (left, right) => keyOf(left) === keyOf(right);

export function clock(time) {
  const date = new Date(time);
  const two = (n) => String(n).padStart(2, '0');
  return `${two(date.getHours())}:${two(date.getMinutes())}:${two(date.getSeconds())}`;
}

export function dayAndClock(time) {
  const date = new Date(time);
  const two = (n) => String(n).padStart(2, '0');
  return `${date.getFullYear()}-${two(date.getMonth() + 1)}-${two(date.getDate())} ${clock(time)}`;
}
