// One board: what it is and does, its keywords, its history.
import { send, get } from './api.js';
import { failed, operate } from './actions.js';
import { boardState } from './chassis.js';
import { isUp, lastOutcome, ofBoard } from './board_state.js';
import { codes } from './codes.js';
import { confirm, h, replace, toast } from './dom.js';
import { showForm } from './form.js';
import { showHistory } from './history.js';
import { live, may } from './live.js';
import { alertRow } from './alerts.js';
import { clock, encoded, isSame, shown } from './text.js';

const SHOWN_ALERTS = 8;

function facts(board) {
  const rows = [
    ['Product', shown(board.product)],
    ['Number', board.number],
    board.shelfSlot && ['Shelf and slot', `${board.shelfSlot.shelf}, ${board.shelfSlot.slot}`],
    ['Bus and slot', `${board.busSlot.bus}, ${board.busSlot.slot}`],
    ['Driver', [board.driverName, board.driverBoardId].map(shown).filter(Boolean).join(', ')],
    ['Serial number', shown(board.serialNumber)],
    ['MAC addresses', board.macAddresses.map(shown).join(', ')],
    ['With the service', [board.autoStart && 'starts', board.autoStop && 'stops']
      .filter(Boolean).join(' and ') || 'neither starts nor stops'],
  ];
  return h('dl', { class: 'facts' }, rows.filter((r) => r && r[1] !== '').map(([name, value]) =>
    h('div', {}, h('dt', {}, name), h('dd', {}, value))));
}

function statusForm(name) {
  const result = h('output', { class: 'number', 'aria-live': 'polite' });
  const selector = h('input', {
    type: 'number', min: 0, value: '0', id: 'selector', class: 'number short',
  });
  return h('form', {
    class: 'inline', onsubmit: async (event) => {
      event.preventDefault();
      try {
        const at = encodeURIComponent(selector.value);
        const answer = await get(`/boards/${encoded(name)}/status?selector=${at}`);
        result.textContent = `= ${answer.status}`;
      } catch (refusal) {
        result.textContent = '';
        failed('status', refusal);
      }
    },
  }, h('label', { for: 'selector' }, 'Status of selector'), selector,
  h('button', {}, 'Ask'), result);
}

function testForm(name) {
  const value = h('input', {
    type: 'number', min: 0, value: '0', id: 'test-value', class: 'number short',
  });
  return h('form', {
    class: 'inline', onsubmit: (event) => {
      event.preventDefault();
      operate('test', name, Number(value.value));
    },
  }, h('label', { for: 'test-value' }, 'Test with value'), value,
  h('button', { 'data-key': 'test' }, 'Test'));
}

export async function show(main, name) {
  const back = h('a', { href: '#/', class: 'back' }, 'Chassis');
  const title = h('h1', { tabindex: '-1' }, shown(name));
  const state = h('p', { class: 'summary', role: 'status' });
  const buttons = h('div', { class: 'bar' });
  const about = h('section', { class: 'panel', 'aria-label': 'Board' });
  const form = h('section', { class: 'panel' });
  const history = h('section', { class: 'panel' });
  const alerts = h('section', { class: 'panel' });
  main.replaceChildren(
    h('div', { class: 'head' }, h('div', {}, back, title), state, buttons),
    h('div', { class: 'columns' }, h('div', {}, form),
      h('div', {}, about, alerts, history)));

  const find = () => live.boards.find((b) => isSame(b.name, name));

  async function remove() {
    const isSure = await confirm(`Delete ${shown(name)}?`,
      h('p', {}, 'Its keywords and its data file go. The history keeps what it was.'), 'Delete');
    if (!isSure) return;
    try {
      await send('DELETE', `/objects/${encoded(name)}`);
      toast(`deleted ${shown(name)}`, 'good');
      live.ask('boards', 'detected');
      window.location.hash = '#/';
    } catch (refusal) {
      failed('deleting', refusal);
    }
  }

  const parts = h('div', { class: 'parts' }, may('operator') && testForm(name), statusForm(name));

  function draw() {
    const board = find();
    if (!board) {
      replace(state, live.boards.length ? 'There is no board of this name.' : '');
      replace(buttons);
      return;
    }
    const now = boardState(board);
    const operations = ofBoard(live.operations, 'board', name);
    const running = operations.find((o) => o.state === 'running');
    const outcome = lastOutcome(operations);
    replace(state, h('span', { class: `state ${now.tone}` }, now.name),
      running && h('progress', { 'aria-label': `${shown(name)} is ${now.name}` }),
      outcome && h('span', { class: `outcome ${outcome.tone}` },
        `${outcome.text} at ${clock(outcome.time)}${outcome.why ? `: ${outcome.why}` : ''}`));
    replace(buttons, may('operator') && ['start', 'stop'].map((verb) => h('button', {
      class: (verb === 'stop') === isUp(now) ? 'primary' : '', 'data-key': verb,
      'aria-disabled': Boolean(running), onclick: () => running || operate(verb, name),
    }, verb === 'start' ? 'Start' : 'Stop')),
    may('configurator') && h('button', { class: 'danger', 'data-key': 'delete', onclick: remove },
      'Delete'));
    replace(about, h('h2', {}, 'Board'), facts(board), parts);
  }

  function drawAlerts() {
    const own = live.alerts.filter((a) => !a.gap && isSame(a.source, name));
    replace(alerts, h('h2', {}, 'Latest alerts'), own.length === 0
      ? h('p', { class: 'empty' }, 'None.')
      : h('ol', { class: 'alerts' }, own.slice(-SHOWN_ALERTS).reverse().map((a) => alertRow(a))),
    h('a', { href: `#/alerts?source=${encoded(name)}` }, 'All alerts of this board'));
  }

  draw();
  drawAlerts();
  const [keywords, changes] = await Promise.all([
    showForm(form, name, {
      renamed: (next) => { window.location.hash = `#/board/${encoded(next)}`; },
    }),
    showHistory(history, name)]);
  let seen = live.newest();
  return (what) => {
    if (['boards', 'operations', 'alerts', 'host'].includes(what)) draw();
    if (what !== 'alerts') return;
    drawAlerts();
    const fresh = live.alerts.filter((a) => a.sequence > seen);
    seen = live.newest();
    if (fresh.some((a) => a.code === codes.modified && isSame(a.source, name))) {
      keywords.reload();
      changes.reload();
    }
  };
}
