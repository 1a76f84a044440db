// The page: who is there, which view is shown, how the connection is.
import { logIn, logOut, session } from './api.js';
import * as alerts from './alerts.js';
import * as board from './board.js';
import * as chassis from './chassis.js';
import * as host from './host.js';
import { h, replace, say } from './dom.js';
import { askToLogIn } from './login.js';
import { live } from './live.js';
import { decoded } from './text.js';

const main = document.getElementById('main');
let hear = null;
let turn = 0;

const routes = [
  [/^#\/board\/([^?]+)$/, board, ''],
  [/^#\/alerts(?:\?(.*))?$/, alerts, '#/alerts'],
  [/^#\/host$/, host, '#/host'],
];

async function route(isFirst) {
  turn += 1;
  const mine = turn;
  if (hear && hear.leave) hear.leave();
  hear = null;
  const found = routes.map(([pattern, view, link]) => ({ at: pattern.exec(window.location.hash), view, link }))
    .find((r) => r.at) || { view: chassis, link: '#/', at: [] };
  const isBoard = found.view === board;
  for (const link of document.querySelectorAll('nav a')) {
    const isIt = link.getAttribute('href') === (isBoard ? '#/' : found.link);
    if (isIt) link.setAttribute('aria-current', isBoard ? 'true' : 'page');
    else link.removeAttribute('aria-current');
  }
  const shownNow = found.view.show(main, isBoard ? decoded(found.at[1]) : undefined, found.at[1]);
  const title = main.querySelector('h1');
  document.title = `${title ? title.textContent : 'Console'} – OA&M`;
  window.scrollTo(0, 0);
  if (!isFirst && title) title.focus({ preventScroll: true });
  const told = await shownNow;
  if (mine === turn) hear = told;
  else if (told && told.leave) told.leave();
}

function connection() {
  const badge = document.getElementById('connection');
  const [tone, text] = !live.isConnected ? ['bad', 'no connection']
    : !live.isDaemonThere ? ['bad', 'daemon away']
      : live.host && !live.host.running ? ['warn', 'service stopped'] : ['good', 'live'];
  if (badge.textContent === text) return;
  badge.className = `state ${tone}`;
  badge.textContent = text;
  say(text);
}

function who() {
  replace(document.getElementById('who'), h('span', {}, live.user), h('span', { class: 'sub' }, live.role),
    h('button', {
      class: 'quiet', onclick: async () => { await logOut().catch(() => {}); window.location.reload(); },
    }, 'Log out'));
}

function theme() {
  const button = document.getElementById('theme');
  const next = { auto: 'dark', dark: 'light', light: 'auto' };
  let now = 'auto';
  try { now = localStorage.getItem('theme') || 'auto'; } catch { /* not kept, then */ }
  const apply = () => {
    document.documentElement.dataset.theme = now;
    replace(button, h('span', { class: 'wide' }, 'Colours: '), h('span', {}, now));
    button.setAttribute('aria-label', `Colours: ${now}`);
  };
  button.addEventListener('click', () => {
    now = next[now];
    try { localStorage.setItem('theme', now); } catch { /* not kept, then */ }
    apply();
  });
  apply();
}

// One letter each, as long as nothing is being written.
function keys() {
  const go = { c: '#/', a: '#/alerts', h: '#/host' };
  document.addEventListener('keydown', (event) => {
    const isWriting = event.target.closest('input, select, textarea, dialog');
    if (isWriting || event.ctrlKey || event.metaKey || event.altKey) return;
    if (go[event.key]) window.location.hash = go[event.key];
    else if (event.key === '/') {
      const field = main.querySelector('input[type=search]');
      if (field) { event.preventDefault(); field.focus(); }
    }
  });
}

async function enter() {
  const token = /[#&]token=([0-9a-f]+)/.exec(window.location.hash);
  // Out of the address bar, and out of the history, at once.
  if (token) window.history.replaceState(null, '', '/#/');
  for (;;) {
    try {
      return await (token ? logIn({ token: token[1] }).catch(session) : session());
    } catch (refusal) {
      if (refusal.status === 401) return askToLogIn(main, refusal.login || []);
      main.replaceChildren(h('p', { class: 'empty' }, `${refusal.message}; trying again.`));
      await new Promise((resolve) => { setTimeout(resolve, 2000); });
    }
  }
}

theme();
keys();
document.querySelector('.skip').addEventListener('click', (event) => {
  event.preventDefault();
  main.focus();
});
document.addEventListener('logged-out', () => window.location.reload());
live.addEventListener('news', ({ detail }) => {
  if (detail === 'connection' || detail === 'host') connection();
  if (detail === 'host') who();
  if (hear) hear(detail);
});
await live.start(await enter());
who();
connection();
window.addEventListener('hashchange', () => route(false));
await route(true);
document.documentElement.dataset.ready = 'yes';
// Since the browser was asked to come here.
window.usefulAfter = performance.now();
