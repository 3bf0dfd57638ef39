// Whether a text and an element are there, or both of them not.

function condition({ text, selector, gone }) {
  let isMet = true;
  const body = bodyOf(document);
  if (text !== null) isMet = body !== null && innerText(body).includes(text);
  if (isMet && selector !== null) {
    const el = deep(document, selector);
    isMet = el !== null && isVisible(el);
  }
  return isMet !== gone;
}
