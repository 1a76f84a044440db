// What the page knows, kept up to date: host, boards, detected boards, operations, alerts.
//
// One event stream tells that something happened; what it was about is then asked again, once for
// many events that come together. Views listen for 'news'.
import { get } from './api.js';
import { codes } from './codes.js';

const KEPT = 2000;
// While somebody reads them, so that no hole opens above what was loaded.
const KEPT_FOR_READER = 50000;
const FIRST_ALERTS = 500;

class Live extends EventTarget {
  constructor() {
    super();
    Object.assign(this, {
      host: null, boards: [], detected: [], operations: [], alerts: [], oldest: null,
      isConnected: false, isDaemonThere: true, user: '', role: '',
    });
    this.asked = new Set();
  }

  news(what) {
    this.dispatchEvent(new CustomEvent('news', { detail: what }));
  }

  // The number of the newest alert that is here; 0: none.
  newest() {
    return this.alerts.length ? this.alerts[this.alerts.length - 1].sequence : 0;
  }

  async start(session) {
    this.user = session.user;
    this.role = session.role;
    this.isDaemonThere = session.reachable;
    await this.refresh(['host', 'boards', 'detected', 'operations']);
    // Without a daemon nobody knows the newest number: what comes first tells it.
    if (this.host) this.oldest = Math.max(0, this.host.newestAlert - FIRST_ALERTS);
    this.connect(this.oldest);
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
    this.source = new EventSource(`/api/v1/alerts${after === null ? '' : `?after=${after}`}`);
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
    on('caughtUp', ({ sequence }) => {
      if (this.oldest === null) this.oldest = sequence;
      this.isCaughtUp = true;
      this.news('alerts');
    });
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
    const last = this.alerts.length ? this.alerts[this.alerts.length - 1].sequence : this.oldest;
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
    if (this.oldest === null) this.oldest = one.sequence - 1;
    this.alerts.push(one);
    const kept = this.isReadOn ? KEPT_FOR_READER : KEPT;
    if (this.alerts.length > kept) {
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
