// The board page: draws the capability document the way its hints ask
// ("sui": "Chart" a live chart, "ui": "label" text, "ui": "TextBox" a box,
// read-only here) with the true values the exporter reads. Every board text
// goes into the page as text (textContent, attribute values), never as markup.
"use strict";

const state = { records: new Map(), charts: new Map(), last: 0, interval: 2 };

function count(kind) {
  const body = document.body;
  body.dataset[kind] = String(Number(body.dataset[kind] || 0) + 1);
}
window.addEventListener("error", () => count("errors"));
window.addEventListener("unhandledrejection", () => count("errors"));
document.addEventListener("securitypolicyviolation", () => count("errors"));

function make(tag, attributes, text) {
  const element = document.createElement(tag);
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

const WORDS = { "I/O": ["out", "in"], "H/L": ["low", "high"], "ON/OFF": ["off", "on"] };

// A value as voractl shows it.
function shown(value, unit) {
  if (value === null || value === undefined) {
    return "N/A";
  }
  if (WORDS[unit] && typeof value !== "string") {
    return WORDS[unit][Number(value) ? 1 : 0];
  }
  if (typeof value !== "number") {
    return String(value);
  }
  switch (unit) {
    case "Cel": return (value >= 0 ? "+" : "") + value.toFixed(1) + " °C";
    case "V": case "A": return value.toFixed(3) + " " + unit;
    case "RPM": case "Hz": return Math.round(value) + " " + unit;
    case "times": return value + " times";
    case "hour": return value + " hours";
    default: return String(value);
  }
}

function widgetOf(element) {
  if (element.sui === "Chart") {
    return "chart";
  }
  return element.ui === "TextBox" ? "textbox" : "label";
}

function unitOf(element, group) {
  return element.u || (group.bu && group.bu !== "info" ? group.bu : "");
}

function itemNode(element, group) {
  const record = state.records.get(element.id);
  const unit = record ? record.unit : unitOf(element, group);
  const widget = widgetOf(element);
  const node = make("div", { class: "item", "data-id": String(element.id), "data-widget": widget,
                              "data-unit": unit });
  const label = make("label", { class: "name", for: "item-" + element.id }, element.n);
  node.append(label);
  if (widget === "textbox") {
    node.append(make("input", { id: "item-" + element.id, class: "value", readonly: "", value: "" }));
  } else {
    node.append(make("output", { id: "item-" + element.id, class: "value" }, ""));
  }
  if (widget === "chart") {
    const chart = make("div", { class: "chart", "data-points": "0" });
    const svg = document.createElementNS("http://www.w3.org/2000/svg", "svg");
    svg.setAttribute("viewBox", "0 0 100 100");
    svg.setAttribute("preserveAspectRatio", "none");
    svg.setAttribute("role", "img");
    svg.setAttribute("aria-label", element.n + ", the last minutes");
    const line = document.createElementNS("http://www.w3.org/2000/svg", "polyline");
    svg.append(line);
    const low = record && record.min !== undefined ? record.min : element.min;
    const high = record && record.max !== undefined ? record.max : element.max;
    const range = make("div", { class: "range" });
    range.append(make("span", {}, shown(low, unit)), make("span", {}, shown(high, unit)));
    chart.append(svg, range);
    node.append(chart);
    // Sensors published under one id (an Embedded API library's voltage
    // slots) each get a chart of that id's readings.
    const charts = state.charts.get(element.id) || [];
    charts.push({ node: chart, line, low, high, points: [] });
    state.charts.set(element.id, charts);
  }
  show(node, record ? record.value : null, unit, !record || record.value === null);
  return node;
}

function show(node, value, unit, unreadable) {
  const text = unreadable ? "N/A" : shown(value, unit);
  const field = node.querySelector(".value");
  if (field.tagName === "INPUT") {
    field.value = text;
  } else {
    field.textContent = text;
  }
  node.classList.toggle("unreadable", Boolean(unreadable));
}

function groupNode(name, group, headed) {
  const section = make("div", { class: "group", "data-group": name });
  if (headed) {
    section.append(make("h3", {}, name));
  }
  const items = make("div", { class: "items" });
  for (const element of group.e) {
    items.append(itemNode(element, group));
  }
  section.append(items);
  return section;
}

function render(documentJson) {
  const main = document.getElementById("blocks");
  main.replaceChildren();
  for (const [name, block] of Object.entries(documentJson || {})) {
    if (!block || typeof block !== "object") {
      continue;
    }
    const section = make("section", { class: "block", "data-block": name });
    section.append(make("h2", {}, name));
    if (Array.isArray(block.e)) {
      section.append(groupNode(name, block, false));
    }
    for (const [groupName, group] of Object.entries(block)) {
      if (group && typeof group === "object" && Array.isArray(group.e)) {
        section.append(groupNode(groupName, group, true));
      }
    }
    main.append(section);
  }
}

function draw(chart) {
  const values = chart.points.map((point) => point[1]).filter((v) => typeof v === "number");
  let low = chart.low, high = chart.high;
  if (!(typeof low === "number" && typeof high === "number" && low < high)) {
    low = Math.min(...values);
    high = Math.max(...values);
    if (!(low < high)) { low -= 1; high += 1; }
  }
  const n = chart.points.length;
  const first = n ? chart.points[0][0] : 0, span = n > 1 ? chart.points[n - 1][0] - first : 1;
  chart.line.setAttribute("points", chart.points
    .filter((point) => typeof point[1] === "number")
    .map((point) => {
      const x = n > 1 ? ((point[0] - first) / span) * 100 : 100;
      const y = 100 - ((Math.min(Math.max(point[1], low), high) - low) / (high - low)) * 100;
      return x.toFixed(2) + "," + y.toFixed(2);
    }).join(" "));
  chart.node.dataset.points = String(values.length);
}

async function poll() {
  try {
    const answer = await json("/api/v1/samples?since=" + state.last);
    state.interval = answer.interval || state.interval;
    for (const sample of answer.samples) {
      for (const [id, value] of Object.entries(sample.values)) {
        for (const chart of state.charts.get(Number(id)) || []) {
          chart.points.push([sample.time, value]);
          if (chart.points.length > 300) {
            chart.points.shift();
          }
        }
        for (const node of document.querySelectorAll('.item[data-id="' + Number(id) + '"]')) {
          show(node, value, node.dataset.unit, value === null);
        }
      }
      state.last = Math.max(state.last, sample.seq);
    }
    for (const charts of state.charts.values()) {
      charts.forEach(draw);
    }
    document.body.dataset.samples = String(state.last);
  } finally {
    setTimeout(poll, state.interval * 1000);
  }
}

async function start() {
  const [library, documentJson, records] = await Promise.all(
    [json("/api/v1/library"), json("/api/v1/document"), json("/api/v1/items")]);
  for (const record of records) {
    if (!state.records.has(record.id)) {
      state.records.set(record.id, record);
    }
  }
  const name = records.find((r) => r.block === "Platform Information" && /name/i.test(r.name) &&
                                   typeof r.value === "string");
  document.getElementById("board").textContent = name ? name.value : "Board";
  document.getElementById("library").textContent = library
    ? library.name + " (" + library.generation + "), " + library.path
    : "No board library: the module is not up";
  render(documentJson);
  await poll();
  document.body.dataset.ready = "1";
}

start();
