// Builds the document. What comes from records is only ever set as text, never as markup.

/**
 * An element. A property that is a function listens to the event of that name; `class`, `text` and `data` are what they
 * say; anything else is an attribute, left out when false or absent.
 */
export function element(tag, properties = {}, ...children) {
  const made = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    if (value === undefined || value === null || value === false) continue;
    if (typeof value === 'function') made.addEventListener(name, value);
    else if (name === 'text') made.textContent = value;
    else if (name === 'class') made.className = value;
    else if (name === 'data') Object.assign(made.dataset, value);
    else made.setAttribute(name, value === true ? '' : value);
  }
  made.append(...children.flat().filter((child) => child !== undefined && child !== null && child !== false && child !== ''));
  return made;
}

/** A text of a record, which may be written in either direction. */
export function recordText(tag, text, properties = {}) {
  return element(tag, { dir: 'auto', ...properties, text });
}

/** The address of a record's page, by its identifier such as "Contact/12". */
export function recordAddress(identifier) {
  return `/record/${identifier.split('/').map(encodeURIComponent).join('/')}`;
}
