// Asking the gateway. What is refused is thrown as a Refusal, with all that the daemon told.

let formToken = '';

export class Refusal extends Error {
  constructor(status, error) {
    super(error.rule || `the gateway answered ${status}`);
    this.status = status;
    Object.assign(this, error);
  }
}

async function ask(method, path, body, type) {
  const headers = {};
  if (method !== 'GET') headers['X-OAM-Form-Token'] = formToken;
  if (body !== undefined) headers['Content-Type'] = type;
  let response;
  try {
    response = await fetch('/api/v1' + path, { method, headers, body, cache: 'no-store' });
  } catch {
    throw new Refusal(0, { reason: 'unreachable', rule: 'the gateway does not answer' });
  }
  const answer = await response.json().catch(() => ({}));
  if (!response.ok) {
    const refusal = new Refusal(response.status, answer.error || {});
    refusal.login = answer.login;
    if (response.status === 401 && path !== '/session')
      document.dispatchEvent(new CustomEvent('logged-out'));
    throw refusal;
  }
  return answer;
}

export const get = (path) => ask('GET', path);
export const send = (method, path, body = {}) =>
  ask(method, path, JSON.stringify(body), 'application/json');
export const upload = (method, path, file) =>
  ask(method, path, file, 'application/octet-stream');

// Who is logged in.
export async function session() {
  const answer = await get('/session');
  formToken = answer.formToken;
  return answer;
}

export async function logIn(credentials) {
  await send('POST', '/session', credentials);
  return session();
}

export const logOut = () => send('DELETE', '/session');
