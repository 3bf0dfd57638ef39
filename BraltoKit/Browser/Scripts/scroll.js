// Brings an element into view, or scrolls it or the page by some pixels.

async function scroll({ ref, selector, dx, dy }) {
  const el = find(ref, selector);
  if (el && dx === 0 && dy === 0) {
    scrollIntoView(el, { block: "center", inline: "center", behavior: "instant" });
    return `Scrolled ${describe(el)} into view. Page is at ${pageScroll().at}.`;
  }
  const step = { left: dx, top: dy, behavior: "instant" };
  if (el) Element.prototype.scrollBy.call(el, step);
  else window.scrollBy(step);
  await sleep(50);
  if (el) {
    const most = Math.max(0, el.scrollHeight - el.clientHeight);
    return `Scrolled by ${dx}, ${dy}. ${describe(el)} is at ${Math.round(el.scrollTop)} of ${most}.`;
  }
  const { at, most } = pageScroll();
  return `Scrolled by ${dx}, ${dy}. Page is at ${at} of ${most}.`;
}
