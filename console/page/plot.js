// Alerts over time, one row a board: how many in each stretch of the time that is loaded. Rows, and
// not colours, tell the boards apart.
import { h, svg } from './dom.js';
import { clock, keyOf, shown } from './text.js';

const BUCKETS = 60;
const MOST_ROWS = 8;
const WIDTH = 600;
const ROW = 26;

const OTHERS = 'all others';

export function plot(alerts, boards, pick) {
  const names = new Set(boards.map((b) => keyOf(b.name)));
  if (alerts.length < 2) return h('p', { class: 'empty' }, 'Too few alerts for a plot.');
  const times = alerts.map((a) => Date.parse(a.time));
  const first = Math.min(...times);
  const span = Math.max(Math.max(...times) - first, 1000);
  const rows = new Map();
  alerts.forEach((alert, i) => {
    const isBoard = names.has(keyOf(alert.source));
    const key = isBoard ? keyOf(alert.source) : '';
    if (!rows.has(key))
      rows.set(key, { source: isBoard ? alert.source : OTHERS, isBoard, counts: new Array(BUCKETS).fill(0),
        worst: new Array(BUCKETS).fill(0), all: 0 });
    const row = rows.get(key);
    const at = Math.min(BUCKETS - 1, Math.floor(((times[i] - first) / span) * BUCKETS));
    row.counts[at] += 1;
    row.worst[at] = Math.max(row.worst[at], Math.min(alert.severity, 2));
    row.all += 1;
  });
  const busiest = [...rows.values()].sort((a, b) => b.isBoard - a.isBoard || b.all - a.all)
    .slice(0, MOST_ROWS);
  const most = Math.max(...busiest.flatMap((r) => r.counts));
  const step = WIDTH / BUCKETS;
  const height = (n) => Math.max(2, (Math.sqrt(n) / Math.sqrt(most)) * (ROW - 6));
  return h('figure', { class: 'plot' },
    h('figcaption', {}, `Alerts by board, ${clock(first)} to ${clock(first + span)}`),
    h('div', { class: 'plot-rows' }, busiest.map((row) => [
      h('span', {}, row.isBoard ? h('button', {
        class: 'link', onclick: () => pick(row.source), 'data-key': `plot ${keyOf(row.source)}`,
      }, shown(row.source)) : row.source, h('span', { class: 'sub' }, ` ${row.all}`)),
      svg('svg', {
        viewBox: `0 0 ${WIDTH} ${ROW}`, preserveAspectRatio: 'none', role: 'img',
        'aria-label': `${row.all} alerts of ${shown(row.source)}`,
      }, svg('line', { x1: 0, x2: WIDTH, y1: ROW - 0.5, y2: ROW - 0.5, class: 'axis' }),
      row.counts.map((n, i) => n > 0 && svg('rect', {
        x: i * step + 1, width: step - 2, y: ROW - 1 - height(n), height: height(n),
        class: ['fine', 'warn', 'bad'][row.worst[i]],
      }, svg('title', {}, `${n} at ${clock(first + (i / BUCKETS) * span)}`))))])));
}
