// What is loaded, and what the calls into it took.
import { get } from './api.js';
import { failed } from './actions.js';
import { h, replace } from './dom.js';
import { shown } from './text.js';

// Durations are seconds; absent: none.
function duration(seconds = 0) {
  if (seconds >= 1) return `${seconds.toFixed(1)} s`;
  return seconds >= 0.001 ? `${(seconds * 1000).toFixed(1)} ms` : `${Math.round(seconds * 1e6)} µs`;
}

const sum = (entries, of) => entries.reduce((all, entry) => all + (of(entry) || 0), 0);

function meanOf({ calls, underWay = 0, total }) {
  const returned = calls - underWay;
  return returned > 0 ? duration((total || 0) / returned) : '–';
}

const figures = (use) => [use.calls, meanOf(use), duration(use.total)].map((text) =>
  h('td', { class: 'number' }, text));

const stillInside = (use) => use.underWay > 0
  && h('span', { class: 'bad' }, ` ${use.underWay} inside, for ${duration(use.oldest)}`);

function rowsOf(module) {
  const entries = [...module.entries].sort((a, b) => (b.total || 0) - (a.total || 0));
  const all = {
    calls: sum(entries, (e) => e.calls),
    total: sum(entries, (e) => e.total),
    underWay: sum(entries, (e) => e.underWay),
    oldest: Math.max(0, ...entries.map((e) => e.oldest || 0)),
  };
  const rows = entries.map((e) => h('tr', { class: 'entry', hidden: true },
    h('th', { scope: 'row', colspan: '2' }, shown(e.entry), stillInside(e)),
    figures(e)));
  const open = h('button', {
    'aria-expanded': 'false', 'data-key': `module-${module.name}`, onclick: () => {
      const isOpen = open.getAttribute('aria-expanded') === 'true';
      open.setAttribute('aria-expanded', String(!isOpen));
      for (const row of rows) row.hidden = isOpen;
    },
  }, shown(module.name));
  return [h('tr', {}, h('th', { scope: 'row' }, rows.length ? open : shown(module.name),
    stillInside(all)), h('td', {}, module.isComponent ? 'component'
    : `plug-in: ${module.products.map(shown).join(', ') || 'no products'}`), figures(all)), ...rows];
}

export async function showModules(place) {
  const again = h('button', { onclick: () => showModules(place), 'data-key': 'modules' },
    'Look again');
  try {
    const { modules } = await get('/host/modules');
    replace(place, h('div', { class: 'bar' }, h('h2', {}, 'Plug-ins and components'), again),
      h('table', {},
        h('thead', {}, h('tr', {}, ['Name', 'Kind', 'Calls', 'Mean', 'In all'].map((text) =>
          h('th', { scope: 'col' }, text)))),
        h('tbody', {}, modules.map(rowsOf))));
  } catch (refusal) {
    failed('plug-ins', refusal);
  }
}
