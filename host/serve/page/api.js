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

async function answered(path, options) {
  let response;
  try {
    response = await fetch(path, { credentials: 'same-origin', redirect: 'error', ...options });
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
