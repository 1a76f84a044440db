// Elements. Every text goes in as text: there is no way from here to markup.

const SVG = 'http://www.w3.org/2000/svg';

function fill(element, attributes, children) {
  for (const [name, value] of Object.entries(attributes || {})) {
    if (value === undefined || value === null || value === false) continue;
    if (name.startsWith('on')) element.addEventListener(name.slice(2), value);
    else if (name === 'value' || name === 'checked' || name === 'hidden') element[name] = value;
    else element.setAttribute(name, value === true ? '' : String(value));
  }
  element.append(...children.flat(Infinity).filter((c) => c !== null && c !== undefined
    && c !== false));
  return element;
}

export const h = (tag, attributes, ...children) =>
  fill(document.createElement(tag), attributes, children);

export const svg = (tag, attributes, ...children) =>
  fill(document.createElementNS(SVG, tag), attributes, children);

// Puts the new ones in the place of the old ones, and leaves the focus where it was as far as the
// same thing (its data-key) is still there.
export function replace(parent, ...children) {
  const key = parent.contains(document.activeElement)
    ? document.activeElement.getAttribute('data-key') : null;
  parent.replaceChildren(...children.flat(Infinity).filter(Boolean));
  if (key === null) return;
  for (const element of parent.querySelectorAll('[data-key]'))
    if (element.getAttribute('data-key') === key) return element.focus({ preventScroll: true });
}

const voice = () => document.getElementById('voice');

// To a screen reader, without moving anything.
export function say(text) {
  voice().textContent = '';
  setTimeout(() => { voice().textContent = text; }, 50);
}

// A short message at the foot of the page.
export function toast(text, kind = '') {
  const list = document.getElementById('toasts');
  const item = h('li', { class: 'toast ' + kind }, text);
  list.append(item);
  while (list.children.length > 4) list.firstChild.remove();
  setTimeout(() => item.remove(), kind === 'bad' ? 12000 : 5000);
}

// Asks before what cannot be taken back lightly. Resolves to whether it was confirmed.
export function confirm(title, body, verb) {
  return new Promise((resolve) => {
    const dialog = h('dialog', { 'aria-labelledby': 'ask-title' },
      h('form', { method: 'dialog' },
        h('h2', { id: 'ask-title' }, title), h('div', { class: 'ask' }, body),
        h('menu', {},
          h('button', { value: 'no', autofocus: true }, 'Cancel'),
          h('button', { value: 'yes', class: 'primary' }, verb))));
    dialog.addEventListener('close', () => {
      resolve(dialog.returnValue === 'yes');
      dialog.remove();
    });
    document.body.append(dialog);
    dialog.showModal();
  });
}
