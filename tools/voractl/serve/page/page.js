// The board page: every item of the board in the capability document's
// order, named and valued as voractl shows them (the exporter sends the
// texts), drawn as the document's hints ask: "sui": "Chart" a chart of the
// last minutes (a strip of states for a two-state item), anything else
// text, since nothing here writes to the board. Board texts go into the page
// only as text (textContent, attribute values), never as markup.
"use strict";

// A board with more charts, or a page narrower than a tablet, opens them on
// demand.
const OPEN_CHARTS = 16;
const WIDE = 600;
// On a board with more items, only the blocks with charts and the short
// ones start unfolded, so that the largest board takes a few screens of a
// phone.
const MANY_ITEMS = 100;
const SHORT_BLOCK = 12;
const KEEP = 300;         // points per chart, as many samples as the exporter keeps
const SVG = "http://www.w3.org/2000/svg";

let state;

function count(kind) {
  const body = document.body;
  body.dataset[kind] = String(Number(body.dataset[kind] || 0) + 1);
}
window.addEventListener("error", () => count("errors"));
window.addEventListener("unhandledrejection", () => count("errors"));
document.addEventListener("securitypolicyviolation", () => count("errors"));

function make(tag, attributes, text) {
  const element = tag.startsWith("svg:") ? document.createElementNS(SVG, tag.slice(4))
                                          : document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    element.setAttribute(name, value);
  }
  if (text !== undefined) {
    element.textContent = text;
  }
  return element;
}

async function json(path) {
  const answer = await fetch(path, { cache: "no-store" });
  if (!answer.ok) {
    throw new Error(path + ": " + answer.status);
  }
  return answer.json();
}

function clock(seconds) {
  return new Date(seconds * 1000).toLocaleTimeString([], { hour12: false });
}

// An axis value as voractl shows the record's values: its unit's decimals
// and symbol, both from the exporter.
function axis(value, record) {
  const digits = record.decimals ?? (Math.abs(value) < 10 ? 2 : 0);
  return value.toFixed(digits) + (record.symbol ? " " + record.symbol : "");
}

// What a record is drawn as, from its element's hints.
function widgetOf(record, element) {
  if (element && element.sui === "Chart") {
    return record.two_state ? "strip" : "chart";
  }
  return element && element.ui === "TextBox" ? "textbox" : "label";
}

function chartOf(record, widget) {
  const id = "chart-" + record.id;
  const svg = make("svg:svg", { viewBox: "0 0 100 100", preserveAspectRatio: "none", role: "img",
                                "aria-label": record.name + ", the last minutes" });
  const node = make("div", { class: "chart", id, "data-points": "0" });
  const chart = { record, widget, node, svg, points: [], labels: {} };
  if (widget === "chart") {
    chart.lines = {};
    for (const limit of ["min", "max"]) {
      chart.lines[limit] = make("svg:line", { class: "limit", "data-limit": limit, x1: "0", x2: "100" });
      svg.append(chart.lines[limit]);
    }
    chart.path = make("svg:path", { class: "line" });
    svg.append(chart.path);
  }
  const frame = make("div", { class: "frame" });
  frame.append(svg);
  if (widget === "chart") {
    const values = make("div", { class: "axis values" });
    chart.labels.high = values.appendChild(make("span"));
    chart.labels.low = values.appendChild(make("span"));
    frame.append(values);
  }
  const times = make("div", { class: "axis times" });
  chart.labels.first = times.appendChild(make("span"));
  chart.labels.last = times.appendChild(make("span"));
  node.append(frame, times);
  return chart;
}

// A line of the readings, on an axis that follows them: never clamped, the
// published limits drawn where they fall in view, time along the bottom.
function drawLine(chart) {
  const numbers = chart.points.map((p) => p[1]).filter((v) => typeof v === "number");
  chart.node.dataset.points = String(numbers.length);
  if (!numbers.length) {
    chart.path.setAttribute("d", "");
    return;
  }
  let low = Math.min(...numbers), high = Math.max(...numbers);
  const pad = high > low ? (high - low) * 0.1 : Math.max(Math.abs(high) * 0.05, 0.05);
  low -= pad;
  high += pad;
  const y = (v) => (100 - ((v - low) / (high - low)) * 100).toFixed(3);
  const first = chart.points[0][0], span = chart.points[chart.points.length - 1][0] - first || 1;
  let d = "", pen = false;
  for (const [time, value] of chart.points) {
    if (typeof value !== "number") {
      pen = false;
      continue;
    }
    const x = numbers.length > 1 ? (((time - first) / span) * 100).toFixed(3) : "0";
    d += (pen ? "L" : "M") + x + "," + y(value) + (numbers.length > 1 ? "" : "H100");
    pen = true;
  }
  chart.path.setAttribute("d", d);
  for (const [limit, line] of Object.entries(chart.lines)) {
    const value = chart.record[limit];
    const shown = typeof value === "number" && value >= low && value <= high;
    line.style.display = shown ? "" : "none";
    line.setAttribute("y1", shown ? y(value) : "0");
    line.setAttribute("y2", shown ? y(value) : "0");
  }
  Object.assign(chart.node.dataset, { low: String(low), high: String(high) });
  chart.labels.high.textContent = axis(high, chart.record);
  chart.labels.low.textContent = axis(low, chart.record);
}

// A two-state item: a strip coloured by its state, a band per stretch of
// samples in one state.
function drawStrip(chart) {
  const points = chart.points;
  const first = points.length ? points[0][0] : 0;
  const span = points.length > 1 ? points[points.length - 1][0] - first : 1;
  const x = (i) => (i >= points.length ? 100 : ((points[i][0] - first) / span) * 100);
  const kind = (i) => (typeof points[i][1] !== "number" ? "na" : points[i][1] ? "on" : "off");
  const bands = [];
  for (let i = 0, j; i < points.length; i = j) {
    for (j = i + 1; j < points.length && kind(j) === kind(i);) {
      j++;
    }
    bands.push(make("svg:rect", { class: "state-" + kind(i), x: x(i).toFixed(3), y: "0",
                                  width: Math.max(x(j) - x(i), 0.5).toFixed(3), height: "100" }));
  }
  chart.svg.replaceChildren(...bands);
  chart.node.dataset.points = String(points.length);
}

function draw(chart) {
  if (chart.node.closest("[hidden]")) {
    return;  // drawn when it is opened
  }
  (chart.widget === "chart" ? drawLine : drawStrip)(chart);
  const points = chart.points;
  chart.labels.first.textContent = points.length ? clock(points[0][0]) : "";
  chart.labels.last.textContent = points.length ? clock(points[points.length - 1][0]) : "";
}

// A record's value, its marks and, for a chart, the button that shows it.
function itemNode(tag, record, widget) {
  const node = make(tag, { class: "item", "data-id": String(record.id), "data-widget": widget });
  node.append(make("span", { class: "text" }, record.text));
  state.items.set(record.id, node);
  show(record.id, record.text, record.alarm === true, record.value === null);
  return node;
}

function show(id, text, alarm, unreadable) {
  const node = state.items.get(id);
  if (!node) {
    return;
  }
  const field = node.querySelector(".text");
  field.textContent = text;
  field.classList.toggle("short", text.length <= 20);  // a reading: kept on one line
  node.classList.toggle("unreadable", unreadable);
  if (node.classList.toggle("alarm", alarm) !== Boolean(node.querySelector(".mark"))) {
    if (alarm) {
      node.append(make("span", { class: "mark" }, "ALARM"));
    } else {
      node.querySelector(".mark").remove();
    }
  }
}

function row(record, widget, groupLimits) {
  const tr = make("tr");
  const name = make("th", { scope: "row" }, record.name);
  if (record.shares_id_with) {
    name.append(make("small", {}, "id shared with " + record.shares_id_with.join(", ")));
  }
  if (record.limits && record.limits !== groupLimits) {
    name.append(make("small", {}, record.limits));
  }
  const rows = [tr];
  tr.append(name, itemNode("td", record, widget));
  if (widget === "chart" || widget === "strip") {
    const chart = chartOf(record, widget);
    state.charts.set(record.id, chart);
    const more = make("tr", { class: "chart-row" });
    const cell = make("td", { colspan: "3" });
    cell.append(chart.node);
    more.append(cell);
    const button = make("button", { type: "button", "aria-controls": chart.node.id,
                                    "aria-label": "Chart of " + record.name }, "Chart");
    button.addEventListener("click", () => open(button, more, chart, more.hidden));
    open(button, more, chart, state.openCharts);
    tr.appendChild(make("td", { class: "toggle" })).append(button);
    rows.push(more);
  } else {
    tr.append(make("td", { class: "toggle" }));
  }
  return rows;
}

function open(button, more, chart, opened) {
  more.hidden = !opened;
  button.setAttribute("aria-expanded", String(opened));
  draw(chart);
}

// Groups whose items all have the same names (a GPIO pin's Dir and Level, a
// panel's controls) are one table, a row per group.
function tabular(groups) {
  const names = (g) => g.records.map((r) => r.name).join("\n");
  return groups.length > 1 && groups.every((g) => g.records.length <= 3 && names(g) === names(groups[0]) &&
                                           g.records.every((r) => !["chart", "strip"].includes(g.widgets.get(r.id))));
}

function blockNode(name, groups) {
  const rows = groups.reduce((n, g) => n + (tabular(groups) ? 1 : g.records.length), 0);
  const details = make("details", { class: "block", "data-block": name });
  details.open = !state.many || rows <= SHORT_BLOCK ||
                 groups.some((g) => [...g.widgets.values()].some((w) => w === "chart" || w === "strip"));
  const alarms = make("span", { class: "count" });
  const summary = make("summary");
  const items = groups.reduce((n, g) => n + g.records.length, 0);
  summary.append(make("h2", {}, name), make("span", { class: "count" },
                 items + (items === 1 ? " item" : " items")), alarms);
  details.append(summary);
  state.blocks.push({ records: groups.flatMap((g) => g.records), alarms });
  const body = make("div", { class: "groups" });
  if (tabular(groups)) {
    const table = make("table", { class: "wide" });
    const head = make("tr");
    head.append(make("th", { scope: "col" }, "name"));
    for (const record of groups[0].records) {
      head.append(make("th", { scope: "col" }, record.name));
    }
    table.appendChild(make("thead")).append(head);
    const tbody = table.appendChild(make("tbody"));
    for (const group of groups) {
      const tr = tbody.appendChild(make("tr"));
      tr.append(make("th", { scope: "row" }, group.name));
      for (const record of group.records) {
        tr.append(itemNode("td", record, group.widgets.get(record.id)));
      }
    }
    body.append(table);
  } else {
    for (const group of groups) {
      const section = make("section", { class: "group" });
      const limits = group.records.every((r) => r.limits && r.limits === group.records[0].limits)
        ? group.records[0].limits : undefined;
      if (group.name) {
        const heading = section.appendChild(make("h3", {}, group.name));
        if (limits) {
          heading.append(make("small", {}, limits));
        }
      }
      const tbody = section.appendChild(make("table")).appendChild(make("tbody"));
      for (const record of group.records) {
        tbody.append(...row(record, group.widgets.get(record.id), limits));
      }
      body.append(section);
    }
  }
  details.append(body);
  return details;
}

function render(documentJson, records) {
  // The hints of each element by block, group and id; of elements that
  // share an id, the last one's, as voractl names the item after it.
  const hints = new Map();
  for (const [blockName, block] of Object.entries(documentJson || {})) {
    const groups = block && Array.isArray(block.e) ? [["", block]]
      : Object.entries(block || {}).filter(([, g]) => g && Array.isArray(g.e));
    for (const [groupName, group] of groups) {
      for (const element of group.e) {
        hints.set(blockName + "\n" + groupName + "\n" + element.id, element);
      }
    }
  }
  const blocks = new Map();
  for (const record of records) {
    const groups = blocks.get(record.block) || blocks.set(record.block, []).get(record.block);
    if (!groups.length || groups[groups.length - 1].name !== record.group) {
      groups.push({ name: record.group, records: [], widgets: new Map() });
    }
    const group = groups[groups.length - 1];
    group.records.push(record);
    group.widgets.set(record.id, widgetOf(record, hints.get(record.block + "\n" + record.group + "\n" + record.id)));
  }
  const charts = records.filter((r) => (hints.get(r.block + "\n" + r.group + "\n" + r.id) || {}).sui === "Chart");
  state.openCharts = charts.length <= OPEN_CHARTS && window.innerWidth >= WIDE;
  state.many = records.length > MANY_ITEMS;
  const main = document.getElementById("blocks");
  main.replaceChildren(...[...blocks].map(([name, groups]) => blockNode(name, groups)));
}

// Alarms are told once when they change, by name; the values are in the rows.
function announce(alarms) {
  const names = state.records.filter((r) => alarms.has(r.id))
    .map((r) => (r.group ? r.group + " " : "") + r.name);
  const text = names.length
    ? names.length + (names.length === 1 ? " reading is outside its" : " readings are outside their") +
      " published range: " + names.join(", ") + "."
    : state.records.length ? "No reading is outside its published range." : "";
  const region = document.getElementById("alarms");
  if (region.textContent !== text) {
    region.textContent = text;
  }
  region.classList.toggle("active", names.length > 0);
  for (const block of state.blocks) {
    const n = block.records.filter((r) => alarms.has(r.id)).length;
    block.alarms.textContent = n ? n + (n === 1 ? " alarm" : " alarms") : "";
  }
}

// Says when the samples stop coming: the exporter gone, or the board not read.
function staleness() {
  const limit = Math.max(3 * state.interval, 5) * 1000;
  const stale = Date.now() - state.seen > limit;
  const note = document.getElementById("stale");
  note.hidden = !stale;
  note.textContent = stale ? (state.failing ? "The exporter does not answer" : "The board is not read") +
    ": no new sample since " + clock(state.seen / 1000) + "; the page tries again by itself." : "";
  document.body.dataset.stale = stale ? "1" : "0";
}

async function load() {
  const [library, documentJson, records] = await Promise.all(
    [json("/api/v1/library"), json("/api/v1/document"), json("/api/v1/items")]);
  state = { records, items: new Map(), charts: new Map(), blocks: [], started: null, last: 0,
            interval: state ? state.interval : 2, seen: Date.now(), failing: false,
            up: documentJson !== null };
  const name = library && typeof library.board === "string" && library.board ? library.board : "Board";
  document.getElementById("board").textContent = name;
  document.title = state.up ? name + " · VORADrv board" : "VORADrv board (the module is not up)";
  document.getElementById("library").textContent = !library
    ? "No board library: the module is not up; the page shows the board once it comes up."
    : library.name + " (" + library.generation + "), " + library.path;
  render(documentJson, records);
  announce(new Set(records.filter((r) => r.alarm === true).map((r) => r.id)));
}

async function poll() {
  try {
    const answer = await json("/api/v1/samples?since=" + state.last);
    const restarted = state.started !== null && (answer.started !== state.started || answer.last < state.last);
    const cameUp = !state.up && answer.samples.some((s) => Object.keys(s.values).length);
    if (restarted || cameUp) {
      // A new exporter, or the module it waited for: a new board, perhaps.
      await load();
      return;
    }
    state.started = answer.started;
    state.interval = answer.interval || state.interval;
    for (const sample of answer.samples) {
      for (const [id, value] of Object.entries(sample.values)) {
        const chart = state.charts.get(Number(id));
        if (chart) {
          chart.points.push([sample.time, value]);
          chart.points.splice(0, chart.points.length - KEEP);
        }
      }
      state.last = Math.max(state.last, sample.seq);
      state.seen = Date.now();
    }
    if (answer.samples.length) {
      const newest = answer.samples[answer.samples.length - 1].values;
      const alarms = new Set(answer.alarms);
      for (const [id, text] of Object.entries(answer.texts || {})) {
        show(Number(id), text, alarms.has(Number(id)), newest[id] === null);
      }
      announce(alarms);
      state.charts.forEach(draw);
    }
    state.failing = false;
    document.body.dataset.samples = String(state.last);
    document.body.dataset.started = String(state.started);
  } catch (error) {
    state.failing = true;
  } finally {
    staleness();
    setTimeout(poll, state.interval * 1000);
  }
}

async function start() {
  for (;;) {
    try {
      await load();
      break;
    } catch (error) {
      // The exporter not (yet) answering: the page waits for it.
      await new Promise((resolve) => setTimeout(resolve, 2000));
    }
  }
  await poll();
  document.body.dataset.ready = "1";
}

start();
