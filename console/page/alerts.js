// Alerts as they come: filtered, older ones on scrolling, gaps said.
import { get } from './api.js';
import { failed } from './actions.js';
import { h, replace } from './dom.js';
import { hexCode, severityName } from './codes.js';
import { live } from './live.js';
import { plot } from './plot.js';
import { clock, dayAndClock, decoded, keyOf, shown, told } from './text.js';

const PAGE = 200;
const MOST_SHOWN = 3000;
const tones = { information: 'fine', warning: 'warn', error: 'bad' };

export function alertRow(alert, isLong) {
  if (alert.gap) {
    const { first, last } = alert.gap;
    return h('li', { class: 'gap' }, first === last ? `Alert ${first} is` : `Alerts ${first} to ${last} are`,
      ' not kept any more.');
  }
  const severity = severityName(alert.severity);
  return h('li', { class: `alert ${tones[severity]}`, 'data-sequence': alert.sequence },
    h('time', { datetime: alert.time, title: dayAndClock(alert.time) }, clock(alert.time)),
    h('span', { class: 'severity' }, severity === 'information' ? 'info' : severity),
    isLong && h('span', { class: 'source' }, shown(alert.source)),
    h('span', { class: 'event', title: hexCode(alert.code) },
      (alert.codeName || hexCode(alert.code)).replace(/^OAMEVN_/, '')),
    h('span', { class: 'text' }, told(alert.text)));
}

export async function show(main, ignored, query) {
  let older = [];
  let oldest = live.oldest || 0;
  live.isReadOn = true;
  let isLoading = false;
  const title = h('h1', { tabindex: '-1' }, 'Alerts');
  const source = h('input', {
    type: 'search', id: 'by-source', list: 'sources', autocomplete: 'off', oninput: () => draw(),
  });
  const sources = h('datalist', { id: 'sources' });
  const event = h('select', { id: 'by-event', onchange: () => draw() });
  const severity = h('select', { id: 'by-severity', onchange: () => draw() },
    h('option', { value: '0' }, 'all'), h('option', { value: '1' }, 'warnings and errors'),
    h('option', { value: '2' }, 'errors'));
  const text = h('input', { type: 'search', id: 'by-text', oninput: () => draw() });
  const count = h('span', { class: 'count', role: 'status' });
  const picture = h('section', { class: 'panel', 'aria-label': 'Alerts over time' });
  const list = h('ol', { class: 'alerts long', 'aria-label': 'Alerts, newest first' });
  const foot = h('div', { class: 'foot' });
  const label = (words, control) => h('div', { class: 'by' },
    h('label', { for: control.id }, words), control);
  main.replaceChildren(h('div', { class: 'head' }, title, count),
    h('form', { class: 'filters', role: 'search', onsubmit: (e) => e.preventDefault() },
      label('Source', source), sources, label('Event', event), label('Severity', severity),
      label('Text', text)),
    picture, h('section', { class: 'panel' }, list, foot));

  const all = () => [...older, ...live.alerts];

  function fits(alert) {
    if (alert.gap) return true;
    if (source.value && !shown(alert.source).toLowerCase().includes(source.value.toLowerCase()))
      return false;
    if (event.value && String(alert.code) !== event.value) return false;
    if (alert.severity < Number(severity.value)) return false;
    return !text.value || shown(alert.text).toLowerCase().includes(text.value.toLowerCase());
  }

  function offer() {
    const events = new Map();
    const names = new Map();
    for (const alert of all()) {
      if (alert.gap) continue;
      events.set(alert.code, (alert.codeName || hexCode(alert.code)).replace(/^OAMEVN_/, ''));
      names.set(keyOf(alert.source), shown(alert.source));
    }
    if (events.size + 1 !== event.options.length) {
      const chosen = event.value;
      event.replaceChildren(h('option', { value: '' }, 'all'), ...[...events].sort((a, b) =>
        (a[1] < b[1] ? -1 : 1)).map(([code, name]) => h('option', { value: code }, name)));
      event.value = chosen;
    }
    if (names.size !== sources.children.length)
      sources.replaceChildren(...[...names.values()].sort().map((n) => h('option', { value: n })));
  }

  function draw() {
    offer();
    const fitting = all().filter(fits);
    const alerts = fitting.filter((a) => !a.gap);
    count.textContent = `${alerts.length} of ${all().filter((a) => !a.gap).length} loaded`;
    replace(picture, plot(alerts.slice(-MOST_SHOWN), live.boards, (name) => {
      source.value = shown(name);
      draw();
    }));
    replace(list, fitting.slice(-MOST_SHOWN).reverse().map((a) => alertRow(a, true)));
    replace(foot, oldest > 0
      ? h('button', { 'data-key': 'older', onclick: loadOlder }, 'Older')
      : h('p', { class: 'empty' }, alerts.length ? 'These are all that are kept.' : 'No alerts.'));
  }

  // Numbers count up by one, so the page before `oldest` begins so many below it.
  async function loadOlder() {
    if (isLoading || oldest === 0) return;
    isLoading = true;
    try {
      const after = Math.max(0, oldest - PAGE);
      const answer = await get(`/alerts/page?after=${after}&limit=${oldest - after}`);
      const fresh = answer.alerts.filter((a) => a.sequence <= oldest);
      if (answer.gap)
        fresh.unshift({ gap: { ...answer.gap, last: Math.min(answer.gap.last, oldest) },
          sequence: answer.gap.first });
      older = [...fresh, ...older];
      // Behind a gap there is nothing more.
      oldest = answer.gap ? 0 : after;
    } catch (refusal) {
      failed('older alerts', refusal);
      oldest = 0;
    }
    isLoading = false;
    draw();
  }

  const wanted = /(?:^|&)source=([^&]*)/.exec(query || '');
  if (wanted) source.value = shown(decoded(wanted[1]));
  draw();
  const watcher = new IntersectionObserver((entries) => {
    if (entries.some((e) => e.isIntersecting) && live.isCaughtUp) loadOlder();
  }, { rootMargin: '200px' });
  watcher.observe(foot);
  const hear = (what) => what === 'alerts' && draw();
  hear.leave = () => {
    live.isReadOn = false;
    watcher.disconnect();
  };
  return hear;
}
