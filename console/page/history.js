// Who changed what, what differs, and back again.
import { get, send } from './api.js';
import { failed } from './actions.js';
import { confirm, h, replace, say, toast } from './dom.js';
import { live, may } from './live.js';
import { dayAndClock, encoded, shown } from './text.js';

const isQualifier = (change) => shown(change.keyword).includes('?');

// Changes as a table: keyword, before, after.
export function changeTable(changes, caption) {
  const plain = changes.filter((c) => !isQualifier(c));
  const rest = changes.length - plain.length;
  return h('table', { class: 'changes' }, h('caption', {}, caption),
    h('thead', {}, h('tr', {}, ['Keyword', 'Before', 'After'].map((t) =>
      h('th', { scope: 'col' }, t)))),
    h('tbody', {}, plain.map((c) => h('tr', {}, h('th', { scope: 'row' }, shown(c.keyword)),
      h('td', { class: 'old' }, c.oldValue === undefined ? '–' : h('del', {}, shown(c.oldValue))),
      h('td', { class: 'new' }, c.newValue === undefined ? '–' : h('ins', {}, shown(c.newValue))))),
    rest > 0 && h('tr', {}, h('td', { colspan: 3 }, `and ${rest} qualifiers`))));
}

export function differenceList(differences) {
  if (differences.length === 0) return h('p', { class: 'empty' }, 'Nothing differs.');
  return differences.map((d) => changeTable(d.changes, `${shown(d.object)}: ${d.kind}`));
}

const words = (entry) => {
  const plain = entry.changes.filter((c) => !isQualifier(c));
  if (plain.length > 3 || plain.length === 0) return `${plain.length} keywords`;
  return plain.map((c) => shown(c.keyword)).join(', ');
};

// `object` empty: of the whole configuration.
export async function showHistory(place, object) {
  let entries = [];
  const list = h('ol', { class: 'history' });
  const more = h('button', { onclick: () => load(true), hidden: true }, 'Older');
  place.replaceChildren(h('h2', {}, 'History'), list, more);
  const mayRoll = may(object ? 'configurator' : 'admin');

  async function rollBack(entry) {
    const about = object ? `&object=${encoded(object)}` : '';
    let differences;
    try {
      ({ differences } = await get(
        `/configuration/difference?from=${entries[0].generation}&to=${entry.generation}${about}`));
    } catch (refusal) {
      return failed('comparing', refusal);
    }
    const title = `Back to generation ${entry.generation}?`;
    const isSure = await confirm(title, [
      !object && h('p', {}, 'Boards are stopped, and plug-ins loaded anew.'),
      ...[differenceList(differences)].flat()], 'Roll back');
    if (!isSure) return undefined;
    try {
      const answer = await send('POST', '/configuration/rollback',
        { generation: entry.generation, ...(object ? { object } : {}) });
      toast(answer.generation ? `rolled back, generation ${answer.generation}`
        : 'nothing differed', 'good');
      say('rolled back');
      live.ask('boards', 'detected');
    } catch (refusal) {
      failed('roll-back', refusal);
    }
    return load(false);
  }

  async function unfold(details, entry) {
    if (!details.open || details.dataset.filled) return;
    details.dataset.filled = 'yes';
    details.append(changeTable(entry.changes, 'What this changed'));
    if (entries[0].generation === entry.generation) return;
    try {
      const about = object ? `&object=${encoded(object)}` : '';
      const answer = await get(`/configuration/difference?from=${entry.generation}${about}`);
      details.append(h('h4', {}, 'Since then'), ...[differenceList(answer.differences)].flat());
    } catch (refusal) {
      failed('comparing', refusal);
    }
  }

  function item(entry, index) {
    const isNow = entry.generation === entries[0].generation;
    // Once a generation, however many objects it touched.
    const isFirst = index > 0 && entries[index - 1].generation !== entry.generation;
    return h('li', { 'data-generation': entry.generation },
      h('details', { ontoggle: (e) => unfold(e.currentTarget, entry) },
        h('summary', { 'data-key': `generation ${entry.number}` },
          h('span', { class: 'generation' }, entry.generation),
          h('span', { class: 'did' }, entry.action, object ? '' : ` ${shown(entry.object)}`),
          h('span', { class: 'sub' }, words(entry)),
          h('span', { class: 'who' }, `${shown(entry.user)}, ${dayAndClock(entry.time)}`))),
      mayRoll && !isNow && isFirst && h('button', {
        class: 'quiet', 'aria-label': `Roll back to generation ${entry.generation}`,
        onclick: () => rollBack(entry),
      }, 'Roll back'));
  }

  async function load(isMore) {
    const last = entries[entries.length - 1];
    const before = isMore && last ? `&before=${last.generation}&beforeNumber=${last.number}` : '';
    try {
      const answer = await get(`/configuration/history?limit=20${before}`
        + (object ? `&object=${encoded(object)}` : ''));
      entries = isMore ? entries.concat(answer.entries) : answer.entries;
      more.hidden = answer.entries.length < 20;
    } catch (refusal) {
      return failed('history', refusal);
    }
    return replace(list, entries.length ? entries.map(item)
      : h('li', { class: 'empty' }, 'Nothing was changed yet.'));
  }

  await load(false);
  return { reload: () => load(false) };
}
