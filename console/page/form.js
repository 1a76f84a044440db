// One object's keywords as a form: what a value may be is told by its qualifiers, what was changed is
// marked, everything goes in one commit, and a refusal stands at its field.
import { get, send } from './api.js';
import { failed } from './actions.js';
import { h, replace, say, toast } from './dom.js';
import { live, may } from './live.js';
import { encoded, isSame, keyOf, shown } from './text.js';

const CHOICE = /^Choices\[(\d+)\]$/i;

function readField(description) {
  const { keyword } = description;
  const qualifiers = {};
  const choices = [];
  for (const { name, value } of description.qualifiers) {
    const match = CHOICE.exec(shown(name));
    if (match) choices[Number(match[1])] = value;
    else qualifiers[shown(name).toLowerCase()] = value;
  }
  const isBinary = typeof keyword.value !== 'string';
  return {
    name: keyword.name,
    value: keyword.value,
    codeName: keyword.code ? keyword.codeName || String(keyword.code) : '',
    choices: choices.filter((c) => c !== undefined),
    type: shown(qualifiers.type || 'String').toLowerCase(),
    min: qualifiers.min && shown(qualifiers.min),
    max: qualifiers.max && shown(qualifiers.max),
    base: qualifiers.base && shown(qualifiers.base),
    about: shown(qualifiers.description || ''),
    isReadOnly: /^yes|true|1$/i.test(shown(qualifiers.readonly || '')) || isBinary
      || Boolean(keyword.code),
  };
}

function hint(field) {
  const parts = [];
  if (field.type !== 'string' && field.type !== 'object') parts.push(field.type);
  if (field.min !== undefined && field.max !== undefined)
    parts.push(`${field.min} to ${field.max}`);
  else if (field.max !== undefined) parts.push(`up to ${field.max}`);
  else if (field.min !== undefined) parts.push(`from ${field.min}`);
  if (field.base && field.base !== '10') parts.push(`base ${field.base}`);
  return parts.join(', ');
}

function control(field, id, attributes) {
  const isYesNo = field.choices.length === 2
    && field.choices.every((c) => /^(yes|no)$/i.test(shown(c)));
  if (field.choices.length > 0) {
    const isListed = field.choices.some((c) => isSame(c, field.value));
    const options = isListed ? field.choices : [field.value, ...field.choices];
    return h('select', { id, ...attributes, class: isYesNo ? 'short' : '' },
      options.map((choice) => h('option', {
        value: shown(choice), selected: isSame(choice, field.value),
      }, shown(choice))));
  }
  const isNumber = field.type === 'integer';
  return h('input', {
    id, type: 'text', ...attributes, value: shown(field.value), autocomplete: 'off',
    spellcheck: 'false', inputmode: isNumber && (!field.base || field.base === '10')
      ? 'numeric' : undefined, class: isNumber ? 'number' : '',
  });
}

// The part before the last dot; those without one come first.
const groupOf = (name) => (name.includes('.') ? name.slice(0, name.lastIndexOf('.')) : '');

// `place` gets the form of the object; `renamed` is called with a new name.
export async function showForm(place, object, { renamed, only, title = 'Keywords' } = {}) {
  let fields = [];
  const changed = () => fields.filter((f) => f.control && f.control.value !== shown(f.value));
  const count = h('span', { class: 'count', role: 'status' });
  const commit = h('button', { type: 'submit', class: 'primary' }, 'Commit');
  const discard = h('button', { type: 'button', onclick: () => load() }, 'Discard');
  const body = h('div', { class: 'groups' });
  const filter = h('input', {
    type: 'search', 'aria-label': 'Filter keywords', placeholder: 'Filter', oninput: () => sift(),
  });
  const general = h('p', { class: 'refusal', role: 'alert', hidden: true });
  const form = h('form', { class: 'keywords', novalidate: true, onsubmit: save },
    h('div', { class: 'bar' }, h('h2', {}, title), filter, count, discard, commit), general, body);
  place.replaceChildren(form);

  function mark() {
    for (const field of fields)
      if (field.row)
        field.row.classList.toggle('changed', field.control.value !== shown(field.value));
    const number = changed().length;
    count.textContent = number ? `${number} changed` : '';
    commit.disabled = discard.disabled = number === 0;
  }

  function sift() {
    const wanted = filter.value.toLowerCase();
    for (const group of body.children) {
      let some = false;
      for (const row of group.querySelectorAll('.field')) {
        row.hidden = !row.textContent.toLowerCase().includes(wanted)
          && !row.dataset.name.toLowerCase().includes(wanted);
        some = some || !row.hidden;
      }
      group.hidden = !some;
    }
  }

  function row(field, index) {
    const id = `field-${keyOf(object)}-${index}`;
    const name = shown(field.name);
    const isFixed = field.isReadOnly || !may('configurator');
    field.note = h('p', { class: 'refusal', id: `${id}-why`, role: 'alert' });
    field.control = isFixed ? null : control(field, id, {
      'aria-describedby': `${id}-about ${id}-why`, oninput: mark, 'data-keyword': name,
    });
    const value = isFixed
      ? h('output', { id, 'data-keyword': name },
        field.codeName ? `(${field.codeName})` : shown(field.value) || '–')
      : field.control;
    const short = name.includes('.') ? name.slice(name.lastIndexOf('.') + 1) : name;
    const element = h('div', { class: 'field' + (isFixed ? ' fixed' : ''), 'data-name': name },
      h('label', { for: id, title: name }, short,
        name !== short && h('span', { class: 'unseen' }, `, ${groupOf(name)}`)),
      h('div', { class: 'value' }, value, !isFixed && h('span', { class: 'hint' }, hint(field))),
      h('p', { class: 'about', id: `${id}-about` }, field.about), field.note);
    field.row = isFixed ? null : element;
    return element;
  }

  function draw() {
    const groups = new Map();
    fields.forEach((field, index) => {
      const group = groupOf(shown(field.name));
      if (!groups.has(group)) groups.set(group, []);
      groups.get(group).push(row(field, index));
    });
    const sorted = [...groups].sort(([a], [b]) => (a < b ? -1 : 1));
    replace(body, sorted.map(([group, rows]) => h('fieldset', {},
      h('legend', {}, group || 'General'), rows)));
    general.hidden = true;
    sift();
    mark();
  }

  async function load() {
    try {
      const answer = await get(`/objects/${encoded(object)}/description`);
      fields = answer.descriptions.map(readField)
        .filter((field) => !only || only(shown(field.name)));
      draw();
    } catch (refusal) {
      failed(`reading ${shown(object)}`, refusal);
    }
  }

  function refuse(refusal) {
    const rule = shown(refusal.rule || refusal.message);
    const at = fields.find((f) => f.control && refusal.keyword && isSame(f.name, refusal.keyword));
    if (!at) {
      general.textContent = rule + (refusal.remedy ? ` – ${refusal.remedy}` : '');
      general.hidden = false;
      return;
    }
    at.note.textContent = rule + (refusal.remedy ? ` – ${refusal.remedy}` : '');
    at.row.classList.add('refused');
    at.control.setAttribute('aria-invalid', 'true');
    at.control.focus();
    at.row.scrollIntoView({ block: 'center' });
  }

  async function save(event) {
    event.preventDefault();
    const all = changed();
    if (all.length === 0) return;
    general.hidden = true;
    for (const field of fields) {
      if (!field.row) continue;
      field.row.classList.remove('refused');
      field.control.removeAttribute('aria-invalid');
      field.note.textContent = '';
    }
    commit.disabled = true;
    try {
      await send('PATCH', `/objects/${encoded(object)}`, {
        changes: all.map((f) => ({ keyword: f.name, value: f.control.value })),
      });
    } catch (refusal) {
      refuse(refusal);
      commit.disabled = false;
      return;
    }
    toast(`${all.length} changed in ${shown(object)}`, 'good');
    say('committed');
    live.ask('boards');
    const name = all.find((f) => keyOf(f.name) === 'name');
    if (name && renamed) renamed(name.control.value);
    else load();
  }

  await load();
  // Somebody else changed it: shown at once, unless this form holds changes of its own.
  return { reload: () => changed().length === 0 && load() };
}
