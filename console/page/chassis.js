// The chassis: every board at its place, and those that are there but not in the configuration.
import { add, detect, operate } from './actions.js';
import { isUp, lastOutcome, ofBoard, stateOf } from './board_state.js';
import { clock, encoded, isSame, keyOf, shown } from './text.js';
import { h, replace } from './dom.js';
import { live, may } from './live.js';

export const boardState = (board) => stateOf(ofBoard(live.operations, 'board', board.name),
  ofBoard(live.alerts.filter((a) => !a.gap), 'source', board.name),
  live.host && live.host.started);

function placeOf(board) {
  if (board.shelfSlot)
    return { group: `Shelf ${board.shelfSlot.shelf}`, slot: board.shelfSlot.slot,
      order: [0, board.shelfSlot.shelf, board.shelfSlot.slot] };
  const { bus, slot } = board.busSlot;
  return { group: `Bus ${bus}`, slot, order: [1, bus, slot] };
}

const compare = (left, right) => {
  for (let i = 0; i < 3; i += 1)
    if (left.order[i] !== right.order[i]) return left.order[i] - right.order[i];
  return 0;
};

function card(board, place) {
  const state = boardState(board);
  const outcome = lastOutcome(ofBoard(live.operations, 'board', board.name));
  const isBusy = state.tone === 'busy';
  const id = keyOf(board.name);
  const verb = isUp(state) ? 'stop' : 'start';
  return h('li', { class: `card ${state.tone}`, 'data-board': id },
    h('div', { class: 'slot', 'aria-hidden': 'true' }, place.slot),
    h('div', { class: 'what' },
      h('a', { class: 'name', href: `#/board/${encoded(board.name)}`, 'data-key': `open ${id}` },
        shown(board.name)),
      h('div', { class: 'sub' }, `${shown(board.product)} · number ${board.number}`,
        h('span', { class: 'unseen' }, `, ${place.group}, slot ${place.slot}`))),
    h('div', { class: 'how' },
      h('span', { class: `state ${state.tone}` }, state.name),
      outcome && h('span', { class: `outcome ${outcome.tone}`, title: outcome.why },
        `${outcome.text} ${clock(outcome.time)}`)),
    may('operator') && h('button', {
      class: 'quiet', 'data-key': `act ${id}`, 'aria-disabled': isBusy,
      'aria-label': `${verb} ${shown(board.name)}`, onclick: () => isBusy || operate(verb, board.name),
    }, verb));
}

function ghost(detected, place) {
  const name = shown(detected.name);
  return h('li', { class: 'card ghost', 'data-ghost': keyOf(detected.name) },
    h('div', { class: 'slot', 'aria-hidden': 'true' }, place.slot),
    h('div', { class: 'what' },
      h('div', { class: 'name' }, name),
      h('div', { class: 'sub' }, `${shown(detected.product)} · in the chassis, not added`,
        h('span', { class: 'unseen' }, `, ${place.group}, slot ${place.slot}`))),
    h('div', { class: 'how' }),
    may('configurator') && h('button', {
      class: 'quiet', 'data-key': `add ${keyOf(detected.name)}`, 'aria-label': `add ${name}`,
      onclick: () => add({ name: detected.name }),
    }, 'add'));
}

function summary() {
  const counts = new Map();
  for (const board of live.boards) {
    const { name, tone } = boardState(board);
    counts.set(name, { tone, count: (counts.get(name) || { count: 0 }).count + 1 });
  }
  return h('p', { class: 'summary' },
    h('strong', {}, `${live.boards.length} ${live.boards.length === 1 ? 'board' : 'boards'}`),
    [...counts].map(([name, { tone, count }]) =>
      h('span', { class: `state ${tone}` }, `${count} ${name}`)));
}

export function show(main) {
  const title = h('h1', { tabindex: '-1' }, 'Chassis');
  const bar = h('div', { class: 'bar' });
  const racks = h('div', { class: 'racks' });
  main.replaceChildren(h('div', { class: 'head' }, title, bar), racks);

  function draw() {
    const ghosts = live.detected.filter((d) => !d.configuredAs
      && !live.boards.some((b) => isSame(b.name, d.name)));
    replace(bar, summary(),
      may('operator') && h('button', { 'data-key': 'detect', onclick: detect }, 'Detect'),
      ghosts.length > 1 && may('configurator') && h('button', {
        class: 'primary', 'data-key': 'add all', onclick: () => add({ all: true }),
      }, `Add all ${ghosts.length}`));
    const groups = new Map();
    const put = (place, item) => {
      if (!groups.has(place.group)) groups.set(place.group, []);
      groups.get(place.group).push({ place, item });
    };
    for (const board of live.boards) {
      const place = placeOf(board);
      put(place, card(board, place));
    }
    for (const detected of ghosts) {
      const place = placeOf(detected);
      put(place, ghost(detected, place));
    }
    const sorted = [...groups].map(([name, items]) => {
      items.sort((a, b) => compare(a.place, b.place));
      return { name, items };
    }).sort((a, b) => compare(a.items[0].place, b.items[0].place));
    replace(racks, sorted.length === 0
      ? h('p', { class: 'empty' }, 'No boards yet. ', may('operator')
        ? 'Detect asks the plug-ins what is in the chassis.' : '')
      : sorted.map(({ name, items }) => h('section', { 'aria-label': name, class: 'rack' },
        h('h2', {}, name), h('ul', {}, items.map((one) => one.item)))));
  }

  draw();
  return (what) => ['boards', 'detected', 'operations', 'alerts', 'host'].includes(what) && draw();
}
