// What is done with boards from more than one view.
import { get, send } from './api.js';
import { say, toast } from './dom.js';
import { live } from './live.js';
import { encoded, shown, told } from './text.js';

export function failed(what, refusal) {
  const text = `${what}: ${shown(refusal.rule || refusal.message)}`;
  toast(text + (refusal.remedy ? ` – ${refusal.remedy}` : ''), 'bad');
  say(text);
}

// Start, stop or test; the outcome is told when it comes.
export async function operate(kind, board, value) {
  const title = `${kind} of ${shown(board)}`;
  try {
    let operation = await send('POST', `/boards/${encoded(board)}/${kind}`,
      value === undefined ? {} : { value });
    live.operations = [...live.operations, operation];
    live.news('operations');
    while (operation.state === 'running')
      operation = await get(`/operations/${encoded(operation.id)}/outcome?timeLimit=20`);
    live.ask('operations');
    const words = { done: 'done', failed: 'failed', refused: 'refused' };
    const how = words[operation.state] || 'outcome unknown';
    const why = operation.state === 'done' ? '' : ': '
      + told(operation.refusal ? operation.refusal.rule : operation.text);
    toast(`${title}: ${how}${why}`, operation.state === 'done' ? 'good' : 'bad');
    say(`${title}: ${how}`);
    return operation;
  } catch (refusal) {
    failed(title, refusal);
    return null;
  }
}

export async function detect() {
  try {
    live.detected = (await send('POST', '/detection')).boards;
    live.news('detected');
    const found = live.detected.filter((d) => !d.configuredAs).length;
    say(`${live.detected.length} boards in the chassis, ${found} not added`);
  } catch (refusal) {
    failed('detection', refusal);
  }
}

export async function add(which) {
  try {
    const answer = await send('POST', '/detection/add', which);
    const names = answer.added.map(shown).join(', ');
    if (names) toast(`added: ${names}`, 'good');
    if (answer.code)
      failed('not all was added', {
        rule: [answer.codeName, ...answer.remarks.map((r) => shown(r.text))].join(' '),
      });
  } catch (refusal) {
    failed('adding', refusal);
  }
  live.ask('boards', 'detected');
}
