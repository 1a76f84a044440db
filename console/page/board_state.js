// What state a board is in, as far as anybody outside its plug-in can tell: what runs now, what was
// told about it since the service started, and how the last request ended.
import { codes } from './codes.js';
import { isSame, told } from './text.js';

const running = { start: 'being started', stop: 'being stopped', test: 'being tested' };
const did = { start: 'start', stop: 'stop', test: 'test' };

// `alerts` of this board, oldest first; `operations` of this board.
export function stateOf(operations, alerts, serviceStarted) {
  const now = operations.find((o) => o.state === 'running');
  if (now) return { name: running[now.kind] || 'busy', tone: 'busy' };
  let state = { name: 'idle', tone: 'idle' };
  let trouble = null;
  for (const alert of alerts) {
    if (serviceStarted && alert.time < serviceStarted) continue;
    const isWell = alert.severity === 0;
    switch (alert.code) {
      case codes.started:
        state = isWell ? { name: 'started', tone: 'good' } : { name: 'start failed', tone: 'bad' };
        trouble = null;
        break;
      case codes.stopped:
        if (isWell) state = { name: 'stopped', tone: 'idle' };
        else state = { name: 'stop failed', tone: 'bad' };
        trouble = null;
        break;
      case codes.dead:
        trouble = { name: 'dead', tone: 'bad' };
        break;
      case codes.hot:
        trouble = { name: 'too hot', tone: 'bad' };
        break;
      case codes.warm:
        if (!trouble || trouble.tone !== 'bad') trouble = { name: 'warm', tone: 'warn' };
        break;
      case codes.slowFan:
        if (!trouble) trouble = { name: 'fan slow', tone: 'warn' };
        break;
      default:
    }
  }
  return trouble || state;
}

// The newest request that came to an end, in words.
export function lastOutcome(operations) {
  const ended = operations.filter((o) => o.state !== 'running')
    .sort((a, b) => ((a.ended || a.requested) < (b.ended || b.requested) ? 1 : -1))[0];
  if (!ended) return null;
  const how = { done: 'done', failed: 'failed', refused: 'refused', unknown: 'outcome unknown' };
  return {
    text: `${did[ended.kind] || 'request'} ${how[ended.state] || ended.state}`,
    why: ended.state === 'done' ? '' : told(ended.refusal ? ended.refusal.rule : ended.text),
    time: ended.ended || ended.requested,
    tone: ended.state === 'done' ? 'good' : 'bad',
    id: ended.id,
  };
}

// Whether stopping is what comes next.
export const isUp = (state) => ['started', 'too hot', 'warm', 'fan slow', 'stop failed']
  .includes(state.name);

export const ofBoard = (list, member, name) => list.filter((one) => isSame(one[member], name));
