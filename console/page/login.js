// The way in: the token of this start, a local user's password, or the browser's certificate.
import { logIn } from './api.js';
import { h } from './dom.js';

// `ways` as the gateway offers them. Resolves to the session.
export function askToLogIn(main, ways) {
  return new Promise((resolve) => {
    const why = h('p', { class: 'refusal', role: 'alert' });
    const attempt = (credentials) => async (event) => {
      event.preventDefault();
      why.textContent = '';
      try {
        resolve(await logIn(credentials()));
      } catch (refusal) {
        why.textContent = refusal.rule || refusal.message;
      }
    };
    const field = (id, label, type, complete) => [h('label', { for: id }, label),
      h('input', { id, type, autocomplete: complete, required: true, spellcheck: 'false' })];
    const of = (id) => document.getElementById(id).value;
    const forms = {
      token: () => h('form', { onsubmit: attempt(() => ({ token: of('token').trim() })) },
        h('p', {}, 'The gateway printed an address with a token when it started. Open that '
          + 'address, or enter the token here.'),
        ...field('token', 'Token', 'password', 'off'), h('button', { class: 'primary' }, 'Enter')),
      password: () => h('form', {
        onsubmit: attempt(() => ({ user: of('user'), password: of('password') })),
      }, ...field('user', 'User', 'text', 'username'),
      ...field('password', 'Password', 'password', 'current-password'),
      h('button', { class: 'primary' }, 'Log in')),
      certificate: () => h('form', { onsubmit: attempt(() => ({ certificate: true })) },
        h('p', {}, 'Your browser has shown a certificate.'),
        h('button', { class: 'primary' }, 'Log in with it')),
    };
    main.replaceChildren(h('section', { class: 'panel login' },
      h('h1', { tabindex: '-1' }, 'Log in'),
      ways.length ? ways.filter((w) => forms[w]).map((w) => forms[w]())
        : h('p', {}, 'Nobody can log in: show a certificate.'), why));
    const first = main.querySelector('input, button');
    if (first) first.focus();
  });
}
