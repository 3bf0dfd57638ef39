// Presses an element as a mouse would, as far as a script can.

// What a pointer would meet at a point: down through shadow roots.
function elementAt(el, x, y) {
  let hit = rootOf(el).elementFromPoint(x, y);
  while (hit && hit !== el && shadowOf(hit)) {
    const inner = shadowOf(hit).elementFromPoint(x, y);
    if (!inner || inner === hit) break;
    hit = inner;
  }
  return hit;
}

// Whether one holds the other, or a label its field.
function isRelated(el, hit) {
  if (isWithin(hit, el) || isWithin(el, hit)) return true;
  const labels = el.labels;
  if (!(labels instanceof NodeList)) return false;
  for (let i = 0; i < labels.length; i++) {
    if (isWithin(hit, labels[i])) return true;
  }
  return false;
}

function nativeClick(el) {
  // Drawings have no such method.
  if (el instanceof HTMLElement) HTMLElement.prototype.click.call(el);
  else
    dispatch(
      el,
      new MouseEvent("click", { bubbles: true, cancelable: true, composed: true, view: window }),
    );
}

function click({ ref, selector, double }) {
  const el = find(ref, selector);
  if (!el) throw new Error("Pass a ref from snapshot or a CSS selector.");
  scrollIntoView(el, { block: "center", inline: "center", behavior: "instant" });
  const box = boxOf(el);
  const x = box.left + box.width / 2;
  const y = box.top + box.height / 2;
  const hit = elementAt(el, x, y);
  const target = hit && isWithin(hit, el) ? hit : el;
  const name = describe(el);
  const covering = hit && !isRelated(el, hit) ? ` (note: ${describe(hit)} was on top of it)` : "";

  const place = {
    bubbles: true,
    cancelable: true,
    composed: true,
    view: window,
    clientX: x,
    clientY: y,
    screenX: window.screenX + x,
    screenY: window.screenY + y,
    button: 0,
  };
  const pointer = { ...place, pointerId: 1, pointerType: "mouse", isPrimary: true };
  dispatch(target, new PointerEvent("pointerover", pointer));
  dispatch(target, new PointerEvent("pointerenter", pointer));
  dispatch(target, new MouseEvent("mouseover", place));
  dispatch(target, new MouseEvent("mouseenter", place));
  dispatch(target, new PointerEvent("pointerdown", { ...pointer, buttons: 1 }));
  dispatch(target, new MouseEvent("mousedown", { ...place, buttons: 1 }));
  focus(el);
  dispatch(target, new PointerEvent("pointerup", pointer));
  dispatch(target, new MouseEvent("mouseup", place));
  nativeClick(target);
  if (double) {
    nativeClick(target);
    dispatch(target, new MouseEvent("dblclick", { ...place, detail: 2 }));
  }
  return `Clicked ${name}${covering}`;
}
