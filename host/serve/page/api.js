// Asks the server for data.

/** A request that was not done as it was asked for, with what the user is told. */
export class RefusedRequest extends Error {
  constructor(status, title, message = '') {
    super(message ? `${title} ${message}` : title);
    this.status = status;
    this.title = title;
    this.explanation = message;
  }
}

// The token is kept for the page's other tabs and its next load. Unlike a cookie, which would go to the servers of all
// ports of this machine, it is kept for this port alone; it is of no use when the server has ended.
const tokenKey = 'token';
const withToken = (token) => (token === null ? {} : { 'X-Kestrel-Token': token });
let ownToken = null;

function knownToken() {
  try {
    return localStorage.getItem(tokenKey) ?? ownToken;
  } catch {
    return ownToken;
  }
}

/** Takes the token out of the address and keeps it, unless the server does not know it: any page may link to this one. */
async function takeToken() {
  const url = new URL(location.href);
  const token = url.searchParams.get('token');
  if (token === null) return;
  url.searchParams.delete('token');
  history.replaceState(history.state, '', url);
  try {
    const { status } = await fetch('/api/user', { credentials: 'omit', headers: withToken(token) });
    if (status === 403) return;
    ownToken = token;
    localStorage.setItem(tokenKey, token);
  } catch {
    // Without a server the next request tells so; without a store the token lasts as long as the page.
  }
}

const tokenTaken = takeToken();

async function answered(path, { headers, ...options }) {
  await tokenTaken;
  let response;
  try {
    response = await fetch(path,
      { credentials: 'omit', redirect: 'error', headers: { ...withToken(knownToken()), ...headers }, ...options });
  } catch (problem) {
    if (problem.name === 'AbortError') throw problem;
    throw new RefusedRequest(0, 'The server does not answer.',
      '“kestrel serve” may have ended. Start it again, and open the address that it prints.');
  }
  let body = {};
  try {
    body = await response.json();
  } catch (problem) {
    if (problem.name === 'AbortError') throw problem;
    throw new RefusedRequest(response.status, 'The server’s answer cannot be read.');
  }
  if (!response.ok) throw new RefusedRequest(response.status, body.title ?? 'That could not be done.', body.message);
  return body;
}

export function get(path, signal) {
  return answered(path, { signal });
}

export function post(path, body) {
  return answered(path, { method: 'POST', headers: { 'Content-Type': 'application/json' }, body: JSON.stringify(body) });
}
