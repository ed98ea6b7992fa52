
// Links the three parts of the page: the text, the tree of fields and the list of findings.
//
// An element that shows a field has the number of the field in data-i, one that shows a finding that
// of the finding in data-f. A subject is such a pair {field, finding}; either may be missing. What is
// pointed at is lit in all parts; what is chosen, with a key or a click, stays lit.
//
// There are no listeners on single fields, so that their number does not matter.
"use strict";

(() => {
  const byId = (id) => document.getElementById(id);
  const text = byId("text");
  const tree = byId("tree"); // null on a page without fields
  const list = byId("list"); // null on a page without findings
  const path = byId("path");
  const hint = path.textContent;
  const parts = [text, tree, list].filter((part) => part);
  let pointed = {};
  let chosen = {};

  // Subjects

  function subjectOf(element) {
    const field = element.closest("[data-i]");
    const finding = element.closest("[data-f]");
    return { field: field?.dataset.i, finding: finding?.dataset.f };
  }

  const isNothing = (subject) => !subject.field && !subject.finding;
  const isSame = (a, b) => a.field === b.field && a.finding === b.finding;
  const itemOf = (subject) => subject.field && byId("n" + subject.field);
  const linkOf = (subject) => subject.finding && byId("f" + subject.finding).firstElementChild;

  // Where the subject begins in the text: the finding rather than the field that it is in.
  const markOf = (subject) =>
    (subject.finding && byId("m" + subject.finding)) || (subject.field && byId("t" + subject.field));

  function elementsOf(subject) {
    const elements = [];
    if (subject.field) elements.push(byId("t" + subject.field), itemOf(subject));
    if (subject.finding) {
      elements.push(byId("f" + subject.finding));
      elements.push(...text.querySelectorAll(`[data-f="${subject.finding}"]`));
    }
    return elements;
  }

  // Light and sight

  // Gives the class to the elements of one subject at a time.
  function lamp(className) {
    let lit = [];
    return (subject) => {
      for (const element of lit) element.classList.remove(className);
      lit = elementsOf(subject);
      for (const element of lit) element.classList.add(className);
    };
  }

  const lightPointed = lamp("pointed");
  const lightChosen = lamp("chosen");

  const rowOf = (item) => item.firstElementChild;
  const partOf = (element) => parts.find((part) => part.contains(element));

  // Brings the element into sight, with what stands above and below it, if its part scrolls on its
  // own; the page stays where it is.
  function reveal(part, element) {
    if (!element || part.scrollHeight <= part.clientHeight) return;
    const sight = part.getBoundingClientRect();
    const context = Math.min(part.clientHeight / 4, 80);
    const line = element.getClientRects()[0]; // none: it is in a closed branch
    if (line && (line.top < sight.top + context || line.bottom > sight.bottom - context))
      part.scrollTop += line.top - sight.top - part.clientHeight / 3;
  }

  function revealOutside(origin, subject) {
    const item = itemOf(subject);
    if (origin !== text) reveal(text, markOf(subject));
    if (origin !== tree && item) reveal(tree, rowOf(item));
    if (origin !== list && subject.finding) reveal(list, linkOf(subject));
  }

  // "IFPL › RTEPTS › 3. PT › FL: F3600 — FL field contains the extra data ...", as nodes and strings.
  function describe(subject) {
    const copyOf = (selector, element) => {
      const found = element?.querySelector(selector);
      return found ? [...found.cloneNode(true).childNodes] : [];
    };
    const behind = (separator, nodes) => (nodes.length ? [separator, ...nodes] : []);
    const item = itemOf(subject);
    const names = [];
    for (let outer = item; outer; outer = outerItem(outer)) {
      const number = copyOf(".item", rowOf(outer));
      if (number.length) number.push(". ");
      names.unshift(" › ", ...number, ...copyOf(".name", rowOf(outer)));
    }
    const data = item ? copyOf(".data", rowOf(item)) : [];
    const finding = copyOf(".what", linkOf(subject));
    return [...names, ...behind(": ", data), ...behind(" — ", finding)].slice(1);
  }

  function showPath() {
    const description = describe(isNothing(pointed) ? chosen : pointed);
    path.replaceChildren(...(description.length ? description : [hint]));
  }

  // Pointing and choosing

  function point(subject, origin) {
    if (isSame(subject, pointed)) return;
    pointed = subject;
    revealOutside(origin, subject);
    lightPointed(subject);
    showPath();
  }

  function choose(subject, origin) {
    if (isNothing(subject) || isSame(subject, chosen)) return;
    chosen = subject;
    openBranchesAround(itemOf(subject));
    stopAt(tree, itemOf(subject));
    select(itemOf(subject));
    stopAt(list, linkOf(subject));
    revealOutside(origin, subject);
    lightChosen(subject);
    showPath();
  }

  // The tree and the list are one stop of the Tab key each: what was chosen last.
  const stops = new Map(parts.map((part) => [part, part.querySelector('[tabindex="0"]')]));

  function stopAt(part, element) {
    if (!element) return;
    stops.get(part).tabIndex = -1;
    element.tabIndex = 0;
    stops.set(part, element);
  }

  let selected = null;

  function select(item) {
    selected?.setAttribute("aria-selected", "false");
    item?.setAttribute("aria-selected", "true");
    selected = item;
  }

  // In one column the text may be far away. What is too long to be seen at once is seen from its begin.
  function goToText() {
    const mark = markOf(chosen);
    const sight = Math.min(text.clientHeight, window.innerHeight);
    const isLong = mark?.getBoundingClientRect().height > sight / 2;
    mark?.scrollIntoView({ block: isLong ? "start" : "center" });
  }

  // Moves only: what a key scrolls under the resting mouse is not pointed at.
  document.addEventListener("pointermove", (event) => {
    if (event.pointerType !== "touch") point(subjectOf(event.target), partOf(event.target));
  });
  document.addEventListener("keydown", () => point({}, null));
  document.documentElement.addEventListener("pointerleave", () => point({}, null));

  document.addEventListener("focusin", (event) => {
    if (event.target !== text) choose(subjectOf(event.target), partOf(event.target));
  });

  document.addEventListener("click", (event) => {
    const part = partOf(event.target);
    if (!part) return;
    if (event.target.matches(".toggle")) {
      const item = event.target.closest("[role=treeitem]");
      setOpen(item, !isOpen(item));
      return;
    }
    if (event.target.closest("a")) event.preventDefault();
    choose(subjectOf(event.target), part);
    if (part !== text) goToText();
  });

  // The keys of the tree

  const isOpen = (item) => item.getAttribute("aria-expanded") === "true";
  const setOpen = (item, open) => item.setAttribute("aria-expanded", String(open));
  const outerItem = (item) => item.parentElement.closest("[role=treeitem]");
  const firstInside = (item) => item.querySelector("[role=treeitem]");
  const lastInside = (item) => itemFrom(item.lastElementChild.lastElementChild, -1);
  const nextItem = (item) => itemFrom(item.nextElementSibling, 1);
  const previousItem = (item) => itemFrom(item.previousElementSibling, -1);
  const isBranch = (item) => item.hasAttribute("aria-expanded");

  // Between items may stand how many are left out.
  function itemFrom(element, step) {
    while (element?.matches(".gap"))
      element = step > 0 ? element.nextElementSibling : element.previousElementSibling;
    return element;
  }

  function openBranchesAround(item) {
    for (let outer = item && outerItem(item); outer; outer = outerItem(outer)) setOpen(outer, true);
  }

  function lastInSight(item) {
    while (isBranch(item) && isOpen(item)) item = lastInside(item);
    return item;
  }

  function below(item) {
    if (isBranch(item) && isOpen(item)) return firstInside(item);
    while (item && !nextItem(item)) item = outerItem(item);
    return item && nextItem(item);
  }

  function above(item) {
    const before = previousItem(item);
    return before ? lastInSight(before) : outerItem(item);
  }

  function openOrEnter(item) {
    if (!isBranch(item)) return null;
    if (isOpen(item)) return firstInside(item);
    setOpen(item, true);
    return null;
  }

  function closeOrLeave(item) {
    if (!isBranch(item) || !isOpen(item)) return outerItem(item);
    setOpen(item, false);
    return null;
  }

  // Each gives the item to go to, if any.
  const treeKeys = {
    ArrowDown: below,
    ArrowUp: above,
    ArrowRight: openOrEnter,
    ArrowLeft: closeOrLeave,
    Home: () => tree.firstElementChild,
    End: () => lastInSight(tree.firstElementChild),
    Enter: goToText,
  };

  tree?.addEventListener("keydown", (event) => {
    const action = treeKeys[event.key];
    if (!action || hasModifier(event)) return;
    event.preventDefault();
    const item = action(event.target);
    if (!item) return;
    item.focus({ preventScroll: true });
    rowOf(item).scrollIntoView({ block: "nearest" });
    reveal(tree, rowOf(item));
  });

  // From finding to finding, around the ends

  const hasModifier = (event) => event.ctrlKey || event.altKey || event.metaKey;

  function goToFinding(step) {
    const count = list.childElementCount;
    const index = chosen.finding ? chosen.finding - 1 + step : Math.min(step, 0);
    const next = linkOf({ finding: ((index + count) % count) + 1 });
    next.focus({ preventScroll: true });
    reveal(list, next);
    goToText();
  }

  const findingKeys = { n: 1, p: -1 };
  const listKeys = { ArrowDown: 1, ArrowUp: -1 };

  // The page opens at the first finding, and what was chosen stays in sight when lines break anew.

  if (list) choose(subjectOf(list.firstElementChild), null);
  window.addEventListener("resize", () => revealOutside(null, chosen));

  document.addEventListener("keydown", (event) => {
    const step = findingKeys[event.key] || (list?.contains(event.target) && listKeys[event.key]);
    if (!list || !step || hasModifier(event)) return;
    event.preventDefault();
    goToFinding(step);
  });
})();
