"use strict";
// What the page can do beyond being read: filters, sorting, rows that are made when they are wanted, a cursor and
// zoom in the pictures. Texts of files only ever become text nodes.
(() => {
  const all = (root, selector) => Array.from(root.querySelectorAll(selector));
  const fill = (element, attributes, children) => {
    for (const [name, value] of Object.entries(attributes ?? {})) element.setAttribute(name, value);
    element.append(...children);
    return element;
  };
  const make = (name, attributes, ...children) => fill(document.createElement(name), attributes, children);
  const draw = (name, attributes, ...children) =>
    fill(document.createElementNS("http://www.w3.org/2000/svg", name), attributes, children);
  const button = (text, action) => {
    const made = make("button", { type: "button" }, text);
    made.addEventListener("click", action);
    return made;
  };
  /** A text as it is sought: without case, and with a hyphen for a minus sign. */
  const plain = (text) => text.toLowerCase().replaceAll("\u2212", "-");
  const search = (label, action) => {
    const input = make("input", { type: "search", "aria-label": label, placeholder: label });
    input.addEventListener("input", () => action(plain(input.value)));
    return input;
  };

  // ---- numbers with units

  const PREFIXES = [[1e12, "T"], [1e9, "G"], [1e6, "M"], [1e3, "k"], [1, ""], [1e-3, "m"], [1e-6, "\u00b5"],
    [1e-9, "n"], [1e-12, "p"], [1e-15, "f"], [1e-18, "a"]];
  const prefixOf = (value) => {
    const size = Math.abs(value) * (1 + 1e-9);
    return size >= 1e15 || size < 1e-18 ? [1, ""] : PREFIXES.find(([factor]) => size >= factor) ?? [1, ""];
  };
  const minus = (text) => text.replace("-", "\u2212");
  const quantity = (value, unit) => {
    const [factor, letter] = prefixOf(value);
    return minus(String(Number((value / factor).toPrecision(4)))) + "\u00a0" + letter + unit;
  };
  /** What a cell's text is sorted by: a number with its prefix, or the text. */
  const rankOf = (text) => {
    const match = /^([\u2212-]?[\d.,]+(?:e[+-]?\d+)?)(?:\u00a0([afpn\u00b5mkMGT]?))?/.exec(text.trim());
    if (!match) return text.trim() === "" || text === "NA" || text === "\u2013" ? -Infinity : text.toLowerCase();
    const factor = PREFIXES.find(([, letter]) => letter === (match[2] ?? ""))[0];
    return Number(match[1].replace("\u2212", "-").replaceAll(",", "")) * factor;
  };
  const compare = (a, b) => {
    if (typeof a === "number" && typeof b === "number") return a === b ? 0 : a - b;
    return typeof a === typeof b ? a.localeCompare(b, undefined, { numeric: true }) : typeof a === "number" ? -1 : 1;
  };

  // ---- tables that are sorted and filtered

  const makeSortable = (table) => {
    const body = table.tBodies[0];
    const heads = all(table, "thead th");
    heads.forEach((head, column) => {
      const sort = () => {
        const down = head.getAttribute("aria-sort") === "ascending";
        heads.forEach((other) => other.removeAttribute("aria-sort"));
        head.setAttribute("aria-sort", down ? "descending" : "ascending");
        const rows = Array.from(body.rows).map((row, place) => ({ row, place, rank: rankOf(row.cells[column].textContent) }));
        rows.sort((a, b) => (down ? -1 : 1) * compare(a.rank, b.rank) || a.place - b.place);
        body.append(...rows.map((entry) => entry.row));
      };
      const text = head.textContent;
      head.replaceChildren(button(text, sort));
    });
  };

  const makeFilter = (table) => {
    const rows = Array.from(table.tBodies[0].rows);
    if (rows.length < 2) return;
    const hidden = new Set();
    let wanted = "";
    const count = make("output", {});
    const apply = () => {
      let shown = 0;
      for (const row of rows) {
        row.hidden = hidden.has(row.className) || !plain(row.textContent).includes(wanted);
        if (!row.hidden) ++shown;
      }
      count.textContent = shown === rows.length ? "" : shown + " of " + rows.length;
    };
    const tools = make("div", { class: "tools" }, search("Filter", (text) => { wanted = text; apply(); }));
    const levels = [...new Set(rows.map((row) => row.className))].filter((name) => name !== "");
    for (const name of levels.length > 1 ? levels : []) {
      const toggle = button(name, () => {
        if (!hidden.delete(name)) hidden.add(name);
        toggle.setAttribute("aria-pressed", String(!hidden.has(name)));
        apply();
      });
      toggle.setAttribute("aria-pressed", "true");
      tools.append(make("span", { class: name }, toggle));
    }
    tools.append(count);
    table.closest(".wide").before(tools);
    table.addEventListener("unfilter", () => {
      hidden.clear();
      wanted = tools.querySelector("input").value = "";
      all(tools, "button").forEach((toggle) => toggle.setAttribute("aria-pressed", "true"));
      apply();
    });
  };

  // ---- tables whose rows are partly kept as lines

  const makeLong = (holder) => {
    const PIECE = 500;
    const table = holder.querySelector("table");
    const kept = holder.querySelector("pre.rows");
    if (table.tBodies[0].rows.length > 8) {
      const fold = holder.closest("details");
      const set = () => {
        if (fold.open && !holder.dataset.ready) {
          holder.dataset.ready = "yes";
          prepare();
        }
      };
      fold.addEventListener("toggle", set);
      set();
    }

    function prepare() {
      const body = table.tBodies[0];
      const first = Array.from(body.rows);
      const link = all(table, "thead th").findIndex((head) => head.className === "link");
      let lines = [];
      if (kept !== null) {
        lines = kept.textContent.split("\n");
        lines.pop();
        kept.remove();
        holder.querySelector(".more")?.remove();
      }
      const total = first.length + lines.length;
      const more = button("Show more rows", () => extend());
      const count = make("output", {});
      let made = [];
      let next = 0;
      let wanted = "";
      const rowOf = (line) => {
        const cells = line.split("\t");
        const target = cells.pop();
        return make("tr", {}, ...cells.map((text, column) =>
          make("td", {}, column === link && target !== "" ? make("a", { href: "#" + target }, text) : text)));
      };
      const extend = () => {
        const rows = [];
        for (; next < lines.length && rows.length < PIECE; ++next)
          if (wanted === "" || plain(lines[next]).includes(wanted)) rows.push(rowOf(lines[next]));
        made.push(...rows);
        body.append(...rows);
        more.hidden = next >= lines.length;
        const shown = made.length + first.filter((row) => !row.hidden).length;
        count.textContent = shown === total ? "" : shown + " of " + total.toLocaleString("en") + " rows";
      };
      const restart = (text) => {
        wanted = text;
        for (const row of first) row.hidden = text !== "" && !plain(row.textContent).includes(text);
        made.forEach((row) => row.remove());
        made = [];
        next = 0;
        if (text !== "") return extend();
        more.hidden = lines.length === 0;
        count.textContent = lines.length === 0 ? "" : first.length + " of " + total.toLocaleString("en") + " rows";
      };
      holder.before(make("div", { class: "tools" }, search("Search", restart), count));
      holder.append(more);
      if (lines.length === 0) makeSortable(table);
      restart("");
    }
  };

  // ---- pictures

  const BOX = { left: 50, top: 20, width: 420, height: 240 };
  const BOX_BESIDE_LABELS = { ...BOX, width: 330 };
  const LINE_OF_TEXT = 11.5;
  const FRAME = { width: 6000, height: 4000 };
  const CORNERS = [["t", "typ"], ["n", "min"], ["x", "max"], ["w-t", "old typ"], ["w-n", "old min"], ["w-x", "old max"]];
  const states = new WeakMap();

  const readSpan = (text) => {
    const [low, high, ...unit] = text.split(" ");
    return { low: Number(low), high: Number(high), unit: unit.join(" ") };
  };

  /** The pieces of a path of M, l and h commands, as lists of places in the frame. */
  const readPath = (data) => {
    const pieces = [];
    let x = 0;
    let y = 0;
    for (const [, command, rest] of data.matchAll(/([Mlh])([^Mlh]*)/g)) {
      const numbers = (rest.match(/-?\d+/g) ?? []).map(Number);
      if (command === "M") {
        [x, y] = numbers;
        pieces.push([[x, y]]);
      } else if (command === "l") {
        for (let i = 0; i + 1 < numbers.length; i += 2) {
          x += numbers[i];
          y += numbers[i + 1];
          pieces.at(-1).push([x, y]);
        }
      }
    }
    return pieces;
  };

  const stateOf = (plot) => {
    let state = states.get(plot);
    if (state) return state;
    const x = readSpan(plot.dataset.x);
    const y = readSpan(plot.dataset.y);
    const lines = CORNERS.flatMap(([name, word]) => all(plot, ".d > path." + name).map((path) =>
      ({ name, word, pieces: readPath(path.getAttribute("d")) }))).filter((line) => line.pieces.length > 0);
    const placed = all(plot, ".lr, .lh, .mark > g").map((element) => // as the program placed them
      ({ element, kept: ["x", "y", "transform"].map((name) => [name, element.getAttribute(name)]) }));
    const box = plot.classList.contains("w") ? BOX_BESIDE_LABELS : BOX;
    state = { plot, box, x, y, view: { x: { ...x }, y: { ...y } }, lines, placed, at: null };
    states.set(plot, state);
    const curves = plot.querySelector(".d"); // inside of an element that can be cut off at the frame
    const frame = draw("g", { class: "c" });
    curves.replaceWith(frame);
    frame.append(curves);
    const title = plot.querySelector("title");
    if (title && title.parentNode === plot) { // said as before, but no longer shown over the cursor
      plot.setAttribute("aria-label", title.textContent);
      title.remove();
    }
    return state;
  };

  const across = (state, value) =>
    state.box.left + (value - state.view.x.low) / (state.view.x.high - state.view.x.low) * state.box.width;
  const down = (state, value) =>
    state.box.top + (state.view.y.high - value) / (state.view.y.high - state.view.y.low) * state.box.height;

  const ticksOf = (span, most) => {
    const least = (span.high - span.low) / most;
    const power = Math.floor(Math.log10(least));
    const times = [1, 2, 5, 10].find((factor) => factor * 10 ** power >= least * (1 - 1e-9));
    const step = times * 10 ** power;
    const [factor, letter] = prefixOf(Math.max(Math.abs(span.low), Math.abs(span.high)));
    const decimals = Math.min(Math.max(Math.round(Math.log10(factor)) - Math.floor(Math.log10(step * (1 + 1e-9))), 0), 12);
    const ticks = [];
    for (let i = Math.ceil(span.low / step - 1e-6); i * step <= span.high + step * 1e-6 && ticks.length < 50; ++i)
      ticks.push([i * step, minus((i * step / factor).toFixed(decimals)).replace(/^\u2212(0\.?0*)$/, "$1")]);
    return { ticks, letter };
  };

  const show = (state) => {
    const { plot, box, view, x, y } = state;
    const horizontal = ticksOf(view.x, 8);
    const vertical = ticksOf(view.y, 8);
    plot.querySelector(".tx").replaceChildren(
      ...horizontal.ticks.map(([value, text]) => draw("text", { x: across(state, value) }, text)));
    plot.querySelector(".ty").replaceChildren(
      ...vertical.ticks.map(([value, text]) => draw("text", { y: down(state, value) }, text)));
    plot.querySelector(".g").setAttribute("d",
      horizontal.ticks.map(([value]) => "M" + across(state, value) + " 20v240").join("") +
      vertical.ticks.map(([value]) => "M50 " + down(state, value) + "h" + box.width).join(""));
    for (const [name, letter, unit] of [[".lx", horizontal.letter, x.unit], [".ly", vertical.letter, y.unit]]) {
      const label = plot.querySelector(name);
      label.textContent = label.textContent.replace(/\(.*\)/, "(" + letter + unit + ")");
    }
    const wide = FRAME.width / (x.high - x.low);
    const high = FRAME.height / (y.high - y.low);
    const scaleX = box.width / ((view.x.high - view.x.low) * wide);
    const scaleY = box.height / ((view.y.high - view.y.low) * high);
    plot.querySelector(".d").style.transform =
      "translate(" + (box.left - (view.x.low - x.low) * wide * scaleX) + "px, " +
      (box.top - (y.high - view.y.high) * high * scaleY) + "px) scale(" + scaleX + ", " + scaleY + ")";
    const place = (element, name, at, low, size) => {
      element.setAttribute(name, at);
      element.style.display = at < low - 1 || at > low + size + 1 ? "none" : "";
    };
    const zoomed = view.x.low !== x.low || view.x.high !== x.high || view.y.low !== y.low || view.y.high !== y.high;
    plot.classList.toggle("zoomed", zoomed);
    if (!zoomed) {
      for (const { element, kept } of state.placed) {
        for (const [name, value] of kept) if (value !== null) element.setAttribute(name, value);
        element.style.display = "";
      }
      return;
    }
    for (const label of all(plot, ".lr")) {
      const at = across(state, Number(label.dataset.x));
      place(label, "x", at, box.left, box.width);
      label.setAttribute("x", Math.min(at, 479 - 3.3 * label.textContent.length));
    }
    let least = box.top;
    for (const label of all(plot, ".lh").sort((a, b) => Number(b.dataset.y) - Number(a.dataset.y))) {
      const at = down(state, Number(label.dataset.y));
      place(label, "y", at, box.top, box.height);
      if (label.style.display === "none") continue;
      label.setAttribute("y", Math.max(at, least));
      least = Math.max(at, least) + LINE_OF_TEXT;
    }
    for (const mark of all(plot, ".mark > g")) {
      const [markX, markY] = mark.dataset.at.split(" ").map(Number);
      const left = across(state, markX);
      mark.setAttribute("transform", "translate(" + clampTo(left, box.left + 8, box.width - 16) + " " +
        clampTo(down(state, markY), box.top + 8, box.height - 16) + ")");
      mark.style.display = left < box.left - 1 || left > box.left + box.width + 1 ? "none" : "";
    }
  };

  /** The value of a line at a value of x; nothing where the line is not. */
  const valueAt = (state, line, value) => {
    const at = (value - state.x.low) / (state.x.high - state.x.low) * FRAME.width;
    for (const piece of line.pieces) {
      if (at < piece[0][0] - 0.5 || at > piece.at(-1)[0] + 0.5) continue;
      let low = 0;
      let high = piece.length - 1;
      while (high - low > 1) {
        const middle = (low + high) >> 1;
        if (piece[middle][0] <= at) low = middle; else high = middle;
      }
      const [x0, y0] = piece[low];
      const [x1, y1] = piece[high];
      const part = x1 > x0 ? Math.min(Math.max((at - x0) / (x1 - x0), 0), 1) : 0;
      return state.y.high - (y0 + (y1 - y0) * part) / FRAME.height * (state.y.high - state.y.low);
    }
    return null;
  };

  const hideCursor = (state) => {
    state.plot.querySelector(".cursor")?.remove();
    state.at = null;
  };

  const spoken = make("output", { class: "unseen" });

  const showCursor = (state, value, speak) => {
    const { plot, box } = state;
    plot.querySelector(".cursor")?.remove();
    state.at = value;
    const left = across(state, value);
    if (left < box.left || left > box.left + box.width) return;
    const rows = [quantity(value, state.x.unit)];
    const dots = [];
    for (const line of state.lines) {
      const found = valueAt(state, line, value);
      if (found === null) continue;
      rows.push(line.word + " " + quantity(found, state.y.unit));
      const top = down(state, found);
      if (top >= box.top && top <= box.top + box.height) dots.push(draw("circle", { cx: left, cy: top, r: 3, class: line.name, fill: "none" }));
    }
    const width = 12 + 6.4 * Math.max(...rows.map((row) => row.length));
    const height = 8 + 14 * rows.length;
    const boxLeft = left + 8 + width > box.left + box.width ? left - 8 - width : left + 8;
    plot.append(draw("g", { class: "cursor", "pointer-events": "none" },
      draw("line", { x1: left, x2: left, y1: box.top, y2: box.top + box.height }), ...dots,
      draw("rect", { x: boxLeft, y: box.top + 6, width, height, rx: 3 }),
      ...rows.map((row, number) => draw("text", { x: boxLeft + 6, y: box.top + 20 + 14 * number }, row))));
    if (speak) spoken.textContent = rows.join(", ");
  };

  /** Where the pointer is in the picture's own units. */
  const placeOf = (plot, event) => {
    const matrix = plot.getScreenCTM().inverse();
    return new DOMPoint(event.clientX, event.clientY).matrixTransform(matrix);
  };
  const xOf = (state, left) => state.view.x.low + (left - state.box.left) / state.box.width * (state.view.x.high - state.view.x.low);
  const yOf = (state, top) => state.view.y.high - (top - state.box.top) / state.box.height * (state.view.y.high - state.view.y.low);
  const clampTo = (value, low, size) => Math.min(Math.max(value, low), low + size);

  const zoomTo = (state, x0, x1, y0, y1) => {
    const least = (span) => (span.high - span.low) * 1e-4;
    if (x1 - x0 < least(state.x) || y1 - y0 < least(state.y)) return;
    Object.assign(state.view.x, { low: Math.max(x0, state.x.low), high: Math.min(x1, state.x.high) });
    Object.assign(state.view.y, { low: Math.max(y0, state.y.low), high: Math.min(y1, state.y.high) });
    hideCursor(state);
    show(state);
  };
  const reset = (state) => {
    state.view = { x: { ...state.x }, y: { ...state.y } };
    hideCursor(state);
    show(state);
  };

  let drag = null; // the picture in which the pointer is pulled, from where, and the band that shows it
  let hovered = null;

  document.addEventListener("pointerdown", (event) => {
    const plot = event.target.closest?.("svg.plot");
    if (!plot || event.button !== 0 || event.pointerType === "touch" || event.target.closest("a")) return;
    const state = stateOf(plot);
    drag = { state, from: placeOf(plot, event), band: draw("rect", { class: "band", width: 0, height: 0 }) };
    plot.append(drag.band);
    event.preventDefault();
    plot.focus({ preventScroll: true });
  });
  const bandOf = (event) => {
    const { box, plot } = drag.state;
    const to = placeOf(plot, event);
    const [left, right] = [drag.from.x, to.x].map((x) => clampTo(x, box.left, box.width)).sort((a, b) => a - b);
    let [top, bottom] = [drag.from.y, to.y].map((y) => clampTo(y, box.top, box.height)).sort((a, b) => a - b);
    if (bottom - top < 10) [top, bottom] = [box.top, box.top + box.height]; // a pull along one axis zooms that one
    return { left, right, top, bottom };
  };
  document.addEventListener("pointermove", (event) => {
    if (drag) {
      const band = bandOf(event);
      fill(drag.band, { x: band.left, y: band.top, width: band.right - band.left, height: band.bottom - band.top }, []);
    }
    const plot = drag ? drag.state.plot : event.target.closest?.("svg.plot");
    if (hovered && hovered.plot !== plot) hideCursor(hovered);
    hovered = plot ? stateOf(plot) : null;
    if (!hovered) return;
    const place = placeOf(plot, event);
    if (place.x < hovered.box.left || place.x > hovered.box.left + hovered.box.width) return hideCursor(hovered);
    showCursor(hovered, xOf(hovered, place.x), false);
  });
  document.addEventListener("pointerup", (event) => {
    if (!drag) return;
    const band = bandOf(event);
    const { state } = drag;
    drag.band.remove();
    drag = null;
    if (band.right - band.left < 6) return;
    zoomTo(state, xOf(state, band.left), xOf(state, band.right), yOf(state, band.bottom), yOf(state, band.top));
  });
  document.addEventListener("pointercancel", () => {
    drag?.band.remove();
    drag = null;
  });
  document.addEventListener("dblclick", (event) => {
    const plot = event.target.closest?.("svg.plot");
    if (plot) reset(stateOf(plot));
  });
  document.addEventListener("keydown", (event) => {
    const plot = document.activeElement?.closest?.("svg.plot");
    if (!plot || plot !== document.activeElement || event.ctrlKey || event.metaKey || event.altKey) return;
    const state = stateOf(plot);
    const { low, high } = state.view.x;
    const at = state.at ?? (low + high) / 2;
    const middle = (state.view.y.low + state.view.y.high) / 2;
    const zoom = (part) => {
      const y = (state.view.y.high - state.view.y.low) * part;
      const x = (high - low) * part;
      zoomTo(state, at - x, at + x, middle - y, middle + y);
      showCursor(state, at, true);
    };
    switch (event.key) {
      case "ArrowLeft": showCursor(state, Math.max(at - (high - low) / 100, low), true); break;
      case "ArrowRight": showCursor(state, Math.min(at + (high - low) / 100, high), true); break;
      case "+": zoom(0.25); break;
      case "-": zoom(1); break;
      case "0":
      case "Escape": reset(state); break;
      default: return;
    }
    event.preventDefault();
  });

  // ---- matrices

  const makeMatrix = (figure) => {
    const picture = figure.querySelector("svg");
    const values = figure.querySelector("pre.entries");
    const readout = make("small", {});
    figure.querySelector("figcaption").append(" ", readout);
    let entries = null;
    let names = [];
    picture.addEventListener("pointermove", (event) => {
      if (entries === null) {
        const [first, ...lines] = values.textContent.split("\n");
        names = first.split("\t");
        entries = new Map();
        for (const line of lines) {
          const [row, column, ...value] = line.split(" ");
          entries.set(row + " " + column, value.join(" "));
          entries.set(column + " " + row, value.join(" "));
        }
      }
      const place = placeOf(picture, event);
      const row = Math.floor(place.y / 10);
      const column = Math.floor(place.x / 10);
      const inside = row >= 0 && column >= 0 && row < names.length - 1 && column < names.length - 1;
      readout.textContent = inside ? names[row] + ", " + names[column] + ": " + (entries.get(row + " " + column) ?? "0") : "";
    });
    picture.addEventListener("pointerleave", () => { readout.textContent = ""; });
  };

  // ---- the page

  const reach = () => {
    const target = location.hash.length > 1 ? document.getElementById(location.hash.slice(1)) : null;
    if (!target) return;
    if (target.hidden) target.closest("table")?.dispatchEvent(new Event("unfilter"));
    const fold = target.matches("tr") ? target.querySelector("details") : target.closest("details");
    if (fold) fold.open = true;
    target.scrollIntoView();
  };

  const files = document.getElementById("files");
  if (files) document.querySelector("h1").after(files);
  all(document, "table.sortable").forEach(makeSortable);
  all(document, "table.filter").forEach(makeFilter);
  all(document, ".long").forEach(makeLong);
  all(document, "figure.matrix").forEach(makeMatrix);
  all(document, "svg.plot").forEach((plot) => plot.setAttribute("tabindex", "0"));
  // Pictures of the models of a library are elements as soon as somebody comes near.
  const makePictures = (later) => {
    const holder = make("template", {});
    holder.innerHTML = later.textContent; // what the program wrote as markup, as it would be read without a script
    all(holder.content, "svg.plot").forEach((plot) => plot.setAttribute("tabindex", "0"));
    later.replaceWith(holder.content);
  };
  const near = new IntersectionObserver((entries) => entries.forEach(({ isIntersecting, target }) => {
    if (!isIntersecting) return;
    near.unobserve(target);
    all(target, "noscript.later").forEach(makePictures);
  }), { rootMargin: "1500px 0px" });
  all(document, "noscript.later").forEach((later) => near.observe(later.closest(".model")));
  document.body.append(spoken, draw("svg", { width: 0, height: 0, style: "position:absolute", "aria-hidden": "true" },
    ...[["frame", BOX], ["frame-w", BOX_BESIDE_LABELS]].map(([id, box]) => draw("clipPath", { id },
      draw("rect", { x: box.left - 1, y: box.top - 1, width: box.width + 2, height: box.height + 2 })))));
  window.addEventListener("hashchange", reach);
  reach();

  // On paper folds are open, and heads are plain text: a head with a button in it is not repeated on each page.
  let opened = [];
  let heads = [];
  window.addEventListener("beforeprint", () => {
    all(document, "noscript.later").forEach(makePictures);
    opened = all(document, "details.fold:not(.explanation):not([open])");
    opened.forEach((fold) => { fold.open = true; });
    heads = all(document, "th > button").map((head) => [head, document.createTextNode(head.textContent)]);
    heads.forEach(([head, text]) => head.replaceWith(text));
  });
  window.addEventListener("afterprint", () => {
    opened.forEach((fold) => { fold.open = false; });
    heads.forEach(([head, text]) => text.replaceWith(head));
  });
})();
