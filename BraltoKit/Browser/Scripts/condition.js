// Whether a text and an element are there, or both of them not.

function condition({ text, selector, gone }) {
  let isMet = true;
  if (text !== null) isMet = document.body !== null && innerText(document.body).includes(text);
  if (isMet && selector !== null) {
    const el = deep(document, selector);
    isMet = el !== null && isVisible(el);
  }
  return isMet !== gone;
}
