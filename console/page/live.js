// What the page knows, kept up to date: host, boards, detected boards, operations, alerts.
//
// One event stream tells that something happened; what it was about is then asked again, once for
// many events that come together. Views listen for 'news'.
import { get } from './api.js';
import { codes } from './codes.js';

const KEPT = 2000;
const FIRST_ALERTS = 500;

class Live extends EventTarget {
  constructor() {
    super();
    Object.assign(this, {
      host: null, boards: [], detected: [], operations: [], alerts: [], oldest: 0,
      isConnected: false, isDaemonThere: true, user: '', role: '',
    });
    this.asked = new Set();
  }

  news(what) {
    this.dispatchEvent(new CustomEvent('news', { detail: what }));
  }

  async start(session) {
    this.user = session.user;
    this.role = session.role;
    this.isDaemonThere = session.reachable;
    await this.refresh(['host', 'boards', 'detected', 'operations']);
    const after = Math.max(0, (this.host ? this.host.newestAlert : 0) - FIRST_ALERTS);
    this.oldest = after;
    this.connect(after);
    setInterval(() => {
      if (!document.hidden && this.isConnected && this.isDaemonThere)
        this.refresh(['operations']);
    }, 2000);
  }

  async refresh(what) {
    const paths = {
      host: ['/host', (a) => { this.host = a; this.user = a.user; this.role = a.role; }],
      boards: ['/boards', (a) => { this.boards = a.boards; }],
      detected: ['/detection', (a) => { this.detected = a.boards; }],
      operations: ['/operations', (a) => { this.operations = a.operations; }],
    };
    await Promise.all(what.map(async (name) => {
      const [path, take] = paths[name];
      try {
        const answer = await get(path);
        const before = JSON.stringify(this[name]);
        take(answer);
        if (before !== JSON.stringify(this[name])) this.news(name);
      } catch (refusal) {
        if (refusal.reason === 'unavailable') this.daemon(!refusal.code ? false : true);
      }
    }));
  }

  // Soon, and once for all that ask meanwhile.
  ask(...what) {
    for (const one of what) this.asked.add(one);
    if (this.timer) return;
    this.timer = setTimeout(() => {
      const all = [...this.asked];
      this.asked.clear();
      this.timer = null;
      this.refresh(all);
    }, 100);
  }

  connect(after) {
    this.source = new EventSource(`/api/v1/alerts?after=${after}`);
    const on = (event, take) => this.source.addEventListener(event, (e) => take(JSON.parse(e.data)));
    this.source.addEventListener('open', () => this.connected(true));
    this.source.addEventListener('error', () => {
      this.connected(false);
      // Not asked again by the browser: the gateway refused.
      if (this.source.readyState === EventSource.CLOSED) {
        clearTimeout(this.again);
        this.again = setTimeout(() => this.reconnect(), 2000);
      }
    });
    on('alert', (alert) => this.alert(alert));
    on('gap', (gap) => this.add({ gap, sequence: gap.last }));
    on('caughtUp', () => { this.isCaughtUp = true; this.news('alerts'); });
    on('daemon', ({ reachable }) => this.daemon(reachable));
  }

  async reconnect() {
    try {
      await get('/session');
    } catch (refusal) {
      if (refusal.status === 401) return document.dispatchEvent(new CustomEvent('logged-out'));
      this.again = setTimeout(() => this.reconnect(), 2000);
      return undefined;
    }
    const last = this.alerts.length ? this.alerts[this.alerts.length - 1].sequence : 0;
    this.source.close();
    this.connect(last);
    return this.refresh(['host', 'boards', 'detected', 'operations']);
  }

  connected(isIt) {
    if (this.isConnected === isIt) return;
    this.isConnected = isIt;
    this.news('connection');
    if (isIt) this.ask('host', 'boards', 'detected', 'operations');
  }

  daemon(isThere) {
    if (this.isDaemonThere === isThere) return;
    this.isDaemonThere = isThere;
    this.news('connection');
    if (isThere) this.ask('host', 'boards', 'detected', 'operations');
  }

  alert(alert) {
    this.add(alert);
    this.ask('operations');
    if ([codes.created, codes.deleted, codes.renamed, codes.modified].includes(alert.code))
      this.ask('boards', 'detected');
  }

  add(one) {
    const last = this.alerts[this.alerts.length - 1];
    if (last && one.sequence <= last.sequence) return;
    this.alerts.push(one);
    if (this.alerts.length > KEPT) {
      this.alerts.splice(0, this.alerts.length - KEPT);
      this.oldest = this.alerts[0].sequence - 1;
    }
    clearTimeout(this.soon);
    this.soon = setTimeout(() => this.news('alerts'), this.isCaughtUp ? 0 : 60);
  }
}

export const live = new Live();

const order = ['none', 'viewer', 'operator', 'configurator', 'admin'];
export const may = (role) => order.indexOf(live.role) >= order.indexOf(role);
