// The report page's renderer. The program computed every figure and embedded it as JSON; this
// script only draws it as SVG, reacts to clicks and keys, and keeps the view in the URL's #.
// Text from the log only ever enters the page as text nodes, never as markup. The controls and
// tables are built once; a change of view moves, hides and shows what exists.
'use strict';
(function() {
const data = JSON.parse(document.getElementById('report-data').textContent);
const supportedSchema = 3;
const svgNs = 'http://www.w3.org/2000/svg';
const topRows = 50;                             // rows of a big table shown until "show all"
const run = data.run || {log: '', graphs: []};  // a history's page has no run
const comparison = data.comparison || null;
const historyData = data.history || null;
const unit = data.unit || '';

// ---- elements ----

// An HTML element; strings among children become text nodes.
function el(tag, attributes, ...children) {
  const node = document.createElement(tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (value === null || value === undefined || value === false) continue;
    if (name === 'text')
      node.textContent = value;
    else
      node.setAttribute(name, value === true ? '' : value);
  }
  for (const child of children.flat(Infinity)) {
    if (child !== null && child !== undefined)
      node.append(typeof child === 'string' ? document.createTextNode(child) : child);
  }
  return node;
}

function svg(tag, attributes, ...children) {
  const node = document.createElementNS(svgNs, tag);
  for (const [name, value] of Object.entries(attributes || {})) {
    if (name === 'text')
      node.textContent = value;
    else if (value !== null && value !== undefined)
      node.setAttribute(name, value);
  }
  for (const child of children.flat(Infinity))
    if (child) node.append(child);
  return node;
}

function tooltip(text) {
  return svg('title', {text: text});
}

function button(id, label, onClick) {
  const node = el('button', {type: 'button', id: id}, label);
  node.addEventListener('click', onClick);
  return node;
}

// ---- numbers ----

const integerFormat = new Intl.NumberFormat('en-US', {maximumFractionDigits: 0});
const decimalFormat = new Intl.NumberFormat('en-US', {maximumFractionDigits: 1});

function missing(value) {
  return value === null || value === undefined;
}

function formatValue(value) {
  if (missing(value)) return '-';
  return Number.isInteger(value) ? integerFormat.format(value) : decimalFormat.format(value);
}

function withUnit(value) {
  return missing(value) ? '-' : `${formatValue(value)} ${unit}`;
}

function formatText(value) {
  return missing(value) ? '-' : value;
}

function formatPercent(value) {
  return missing(value) ? '-' : value.toFixed(1);
}

// The sign of what is shown: a change that rounds to zero reads as none, never as "-0.0".
function formatSigned(value) {
  if (missing(value)) return '-';
  const shown = Math.abs(value).toFixed(1);
  if (Number(shown) === 0) return '\u00b1' + shown;
  return (value > 0 ? '+' : '\u2212') + shown;
}

function formatInterval(interval) {
  return interval ? `[${formatSigned(interval[0])}, ${formatSigned(interval[1])}]` : '-';
}

function formatChange(percent, interval) {
  if (missing(percent)) return '-';
  return `${formatSigned(percent)} %` + (interval ? ` ${formatInterval(interval)}` : '');
}

// One number when both runs need as many executions, else base/new.
function formatNeeded(needed) {
  if (!needed) return '-';
  return needed.base === needed.new ? formatValue(needed.new) :
                                      `${formatValue(needed.base)}/${formatValue(needed.new)}`;
}

function formatShort(value) {
  if (value >= 1e9) return (value / 1e9).toPrecision(2).replace(/\.0$/, '') + 'G';
  if (value >= 1e6) return (value / 1e6).toPrecision(2).replace(/\.0$/, '') + 'M';
  if (value >= 1e3) return (value / 1e3).toPrecision(2).replace(/\.0$/, '') + 'k';
  return String(Math.round(value * 100) / 100);
}

function formatP(value) {
  if (missing(value)) return '-';
  return value < 0.001 ? value.toExponential(1) : value.toFixed(3);
}

// ---- scales ----

function linearScale(low, high, from, to) {
  const span = high - low || 1;
  return (value) => from + ((value - low) / span) * (to - from);
}

function logScale(low, high, from, to) {
  const a = Math.log(Math.max(low, 1));
  const b = Math.log(Math.max(high, low + 1, 2));
  return (value) => from + ((Math.log(Math.max(value, 1)) - a) / (b - a || 1)) * (to - from);
}

// 1, 2 and 5 times the powers of ten within [low, high], thinned to about count ticks.
function logTicks(low, high, count) {
  if (!(high > low && low > 0 && Number.isFinite(high))) return [];
  const ticks = [];
  for (let power = Math.pow(10, Math.floor(Math.log10(Math.max(low, 1)))); power <= high;
       power *= 10)
    for (const factor of [1, 2, 5]) {
      const tick = power * factor;
      if (tick >= low && tick <= high) ticks.push(tick);
    }
  if (ticks.length < 3) return linearTicks(low, high, count);  // a narrow range: plain steps
  if (ticks.length <= count) return ticks;
  const powers = ticks.filter((tick) => Math.log10(tick) % 1 === 0);
  return powers.length >= 2 ? powers : [ticks[0], ticks[ticks.length - 1]];
}

// Round steps of 1, 2 or 5 times a power of ten, at least three of them within [low, high].
function linearTicks(low, high, count) {
  const raw = (high - low) / Math.max(count, 2);
  const power = Math.pow(10, Math.floor(Math.log10(raw || 1)));
  const step = [1, 2, 5, 10].map((f) => f * power).find((s) => s >= raw) || power;
  const ticks = [];
  for (let tick = Math.ceil(low / step) * step; tick <= high + 1e-9; tick += step)
    ticks.push(Math.round(tick / step) * step);
  return ticks;
}

// ---- the view in the URL ----

const state = {
  view: 'steps',
  graph: 0,
  measure: 'span',
  sort: 'share',
  dir: 'desc',
  filter: '',
  all: false,
  step: null,
  csort: 'verdict',
  cdir: 'asc',
  cfilter: '',
  call: false,
  same: false,
  row: null,
  hsort: 'latest',
  hdir: 'desc',
  hfilter: '',
  hall: false,
  series: null
};

function readState() {
  const params = new URLSearchParams(location.hash.slice(1));
  const number = (name) =>
      (params.has(name) && /^\d+$/.test(params.get(name)) ? Number(params.get(name)) : null);
  const oneOf = (name, keys, fallback) =>
      (keys.includes(params.get(name)) ? params.get(name) : fallback);
  state.view = historyData                              ? 'history' :
      params.get('view') === 'comparison' && comparison ? 'comparison' :
                                                          'steps';
  state.hsort = oneOf('hsort', historyColumns.map((c) => c.key), 'latest');
  state.hdir = oneOf('hdir', ['asc', 'desc'], 'desc');
  state.hfilter = params.get('hfilter') || '';
  state.hall = params.get('hall') === '1';
  state.series =
      historyData && number('series') !== null && number('series') < historyData.series.length ?
      number('series') :
      null;
  state.graph = Math.min(number('graph') || 0, Math.max(run.graphs.length - 1, 0));
  state.measure = oneOf('measure', ['span', 'wait'], 'span');
  state.sort = oneOf('sort', stepColumns.map((c) => c.key), 'share');
  state.dir = oneOf('dir', ['asc', 'desc'], 'desc');
  state.filter = params.get('filter') || '';
  state.all = params.get('all') === '1';
  const graph = run.graphs[state.graph];
  state.step = graph && number('step') !== null && number('step') < graph.series.length ?
      number('step') :
      null;
  state.csort = oneOf('csort', comparisonColumns.map((c) => c.key), 'verdict');
  state.cdir = oneOf('cdir', ['asc', 'desc'], 'asc');
  state.cfilter = params.get('cfilter') || '';
  state.call = params.get('call') === '1';
  state.same = params.get('same') === '1';
  state.row = comparison && number('row') !== null && number('row') < comparison.rows.length ?
      number('row') :
      null;
}

function writeState() {
  const params = new URLSearchParams();
  if (historyData) {
    params.set('hsort', state.hsort);
    params.set('hdir', state.hdir);
    if (state.hfilter) params.set('hfilter', state.hfilter);
    if (state.hall) params.set('hall', '1');
    if (state.series !== null) params.set('series', state.series);
    history.replaceState(null, '', '#' + params.toString());
    return;
  }
  if (state.view !== 'steps') params.set('view', state.view);
  params.set('graph', state.graph);
  if (state.measure !== 'span') params.set('measure', state.measure);
  params.set('sort', state.sort);
  params.set('dir', state.dir);
  if (state.filter) params.set('filter', state.filter);
  if (state.all) params.set('all', '1');
  if (state.step !== null) params.set('step', state.step);
  if (comparison) {
    params.set('csort', state.csort);
    params.set('cdir', state.cdir);
    if (state.cfilter) params.set('cfilter', state.cfilter);
    if (state.call) params.set('call', '1');
    if (state.same) params.set('same', '1');
    if (state.row !== null) params.set('row', state.row);
  }
  history.replaceState(null, '', '#' + params.toString());
}

function update(changes) {
  Object.assign(state, changes);
  writeState();
  apply();
}

// ---- a table built once ----

// Items in the order of column, missing figures last either way, ties in data order.
function sortItems(items, column, dir) {
  const sign = dir === 'asc' ? 1 : -1;
  return items.slice().sort((a, b) => {
    const x = column.value(a);
    const y = column.value(b);
    if (x === y || (missing(x) && missing(y))) return a.index - b.index;
    if (missing(x)) return 1;
    if (missing(y)) return -1;
    return (typeof x === 'string' ? x.localeCompare(y) : x - y) * sign || a.index - b.index;
  });
}

function nextDirection(column, key, dir) {
  if (key === column.key) return dir === 'desc' ? 'asc' : 'desc';
  return column.text || column.ascending ? 'asc' : 'desc';
}

// A cell's classes: its column's, text or not, and its own.
function cellClass(column) {
  return [`c-${column.key}`, column.text ? 'text' : '', column.cellClass || ''].join(' ').trim();
}

// The table of items (each with an index): its rows are made when first shown and from then on
// only moved, hidden and shown. design: {id, columns, picture: {header, draw(item)},
// rowClass(item), onSort(column), onOpen(item)}. A column: {key, label, text, unit, value(item) to
// sort by, and format(value) or cell(item) for its text}.
function liveTable(design) {
  const made = new Map();
  const detail = el('tr', {class: 'detail-row'}, el('td', {colspan: design.columns.length + 1}));
  let detailItem = null;
  let selected = null;  // the row whose detail is open
  let shown = [];
  const headers = design.columns.map((column) => {
    const sortButton =
        el('button', {type: 'button'}, column.label,
           column.unit && unit ? el('span', {class: 'unit'}, ` ${unit}`) : null);
    sortButton.addEventListener('click', () => design.onSort(column));
    return el('th', {class: cellClass(column), 'data-key': column.key}, sortButton);
  });
  const body = el('tbody', {});
  const table = el(
      'table', {id: design.id, class: 'live'},
      el('thead', {}, el('tr', {}, headers, el('th', {class: 'picture'}, design.picture.header))),
      body);

  // Rows are clones of one empty row, and each row's picture is drawn once it nears the view:
  // showing thousands of rows then costs little more than their text.
  const prototype = el(
      'tr', {tabindex: '0'}, design.columns.map((column) => el('td', {class: cellClass(column)})),
      el('td', {class: 'picture'}));
  const itemOf = new Map();
  const drawn = new Set();
  function drawPicture(row) {
    const index = Number(row.dataset.index);
    if (drawn.has(index)) return;
    drawn.add(index);
    observer.unobserve(row);
    row.lastChild.append(design.picture.draw(itemOf.get(index)));
  }
  const observer = new IntersectionObserver((entries) => {
    for (const entry of entries)
      if (entry.isIntersecting) drawPicture(entry.target);
  }, {rootMargin: '800px 0px'});

  function rowOf(item) {
    let row = made.get(item.index);
    if (row) return row;
    row = prototype.cloneNode(true);
    row.dataset.index = String(item.index);
    design.columns.forEach((column, i) => {
      row.children[i].textContent =
          column.cell ? column.cell(item) : (column.format || formatValue)(column.value(item));
    });
    if (design.rowClass) row.classList.add(...design.rowClass(item));
    itemOf.set(item.index, item);
    observer.observe(row);
    row.addEventListener('click', () => design.onOpen(item));
    row.addEventListener('keydown', (event) => {
      if (event.target === row && (event.key === 'Enter' || event.key === ' ')) {
        event.preventDefault();
        design.onOpen(item);
      }
    });
    made.set(item.index, row);
    return row;
  }

  return {
    element: table,
    sortedBy(key, dir) {
      headers.forEach((th, i) => {
        if (design.columns[i].key === key)
          th.setAttribute('aria-sort', dir === 'asc' ? 'ascending' : 'descending');
        else
          th.removeAttribute('aria-sort');
      });
    },
    // Shows items in their order: rows not among them are hidden, the others moved into place.
    show(items) {
      const same =
          items.length === shown.length && items.every((item, i) => item.index === shown[i].index);
      if (same) {  // opening a row or paging back to what is shown moves nothing
        this.placeDetail(detailItem, detailItem ? detail.firstChild.firstChild : null);
        return;
      }
      const wanted = new Set(items.map((item) => item.index));
      for (const [index, row] of made)
        if (!wanted.has(index)) row.hidden = true;
      const rows = document.createDocumentFragment();
      for (const item of items) {
        const row = rowOf(item);
        row.hidden = false;
        rows.append(row);
      }
      body.append(rows);
      shown = items;
      for (const item of items.slice(0, topRows)) drawPicture(made.get(item.index));
      this.placeDetail(detailItem, detailItem ? detail.firstChild.firstChild : null);
    },
    shownItems() {
      return shown;
    },
    shownRows() {
      return shown.map((item) => made.get(item.index));
    },
    rowOfIndex(index) {
      return made.get(index) || null;
    },
    // Puts content in a row under item's, when item is shown; false when it is not.
    placeDetail(item, content) {
      if (selected) selected.classList.remove('selected');
      selected = null;
      detailItem = item;
      if (!item || !content || !shown.some((s) => s.index === item.index)) {
        detail.remove();
        return false;
      }
      const row = made.get(item.index);
      row.classList.add('selected');
      selected = row;
      detail.firstChild.replaceChildren(content);
      row.after(detail);
      return true;
    }
  };
}

// The toolbar above a table: a filter, a status line and what the caller adds. The filter keeps
// focus, caret and composition: it only sets state, never rebuilds itself.
function toolbar(id, placeholder, onFilter, ...extras) {
  const filter = el('input', {
    type: 'search',
    id: id,
    placeholder: placeholder,
    'aria-label': placeholder,
    autocomplete: 'off'
  });
  filter.addEventListener('input', () => onFilter(filter.value));
  const status = el('span', {class: 'status', role: 'status'});
  return {element: el('div', {class: 'toolbar'}, filter, extras, status), filter, status};
}

// Shows items sorted by column in dir, the top rows unless all, and says so on allButton; returns
// the items shown.
function showSorted(table, items, column, dir, all, allButton) {
  const sorted = sortItems(items, column, dir);
  const visible = all ? sorted : sorted.slice(0, topRows);
  table.sortedBy(column.key, dir);
  table.show(visible);
  allButton.hidden = sorted.length <= topRows;
  allButton.textContent = all ? `Show the top ${topRows}` : `Show all ${sorted.length}`;
  return visible;
}

// The open panel of the item at index (none: null) under its row; a row filtered or folded away
// opens it in host, above the table.
function placePanel(table, index, panel, host) {
  const underRow = table.placeDetail(index !== null ? {index} : null, panel);
  if (index !== null && !underRow)
    host.replaceChildren(panel);
  else
    host.replaceChildren();
}

function setFilterValue(input, value) {
  if (input.value !== value) input.value = value;
}

function matchesFilter(filter, ...texts) {
  const wanted = filter.toLowerCase();
  return !wanted || texts.some((text) => (text || '').toLowerCase().includes(wanted));
}

// ---- comparison rows by series ----

function seriesKey(graph, kind, name, parent, occurrence) {
  return JSON.stringify([graph, kind, name, parent, occurrence]);
}

const comparedSeries = new Map(
    comparison ?
        comparison.rows.map(
            (row) => [seriesKey(row.graph, row.kind, row.name, row.parent, row.occurrence), row]) :
        []);

function comparedRow(graph, series) {
  return comparedSeries.get(
             seriesKey(graph.name, series.kind, series.name, series.parent, series.occurrence)) ||
      null;
}

// ---- navigation, banner and the graph's header ----

const navButtons = run.graphs.map((graph, index) => {
  const node = el('button', {type: 'button', 'data-graph': String(index)}, graph.name);
  node.addEventListener('click', () => update({view: 'steps', graph: index, step: null}));
  return node;
});
if (comparison)
  navButtons.push(button('comparison-view', 'Comparison', () => update({view: 'comparison'})));

function buildNav() {
  const nav = document.getElementById('views');
  nav.replaceChildren(...navButtons);
  nav.hidden = navButtons.length < 2 && !comparison;
}

function updateNav() {
  navButtons.forEach((node) => {
    const graph = node.getAttribute('data-graph');
    const pressed = graph === null ? state.view === 'comparison' :
                                     state.view === 'steps' && Number(graph) === state.graph;
    node.setAttribute('aria-pressed', String(pressed));
  });
}

// A cut log read as far as it goes: said at the top, before any figure is read.
function buildBanner() {
  const cut = data.run ? [[data.run.log, data.run.partial]] : [];
  if (data.comparison) cut.push([data.comparison.base, data.comparison.basePartial]);
  const partials = cut.filter(([, partial]) => partial);
  const banner = document.getElementById('banner');
  banner.hidden = partials.length === 0;
  banner.replaceChildren(...partials.map(
      ([log, partial]) =>
          el('p', {}, el('strong', {}, 'Partial log. '),
             `Only the first ${formatValue(partial.chunksRead)} chunks (${
                 formatValue(partial.bytesRead)} bytes) of ${formatText(log)} could be read: ${
                 formatText(partial.reason)}. ` +
                 'Every figure from it covers only those executions.')));
}

function figure(label, value) {
  return el('li', {}, el('span', {class: 'label'}, label), el('span', {class: 'value'}, value));
}

let headerGraph = null;

function renderGraphHeader() {
  const section = document.getElementById('graph');
  section.hidden = state.view !== 'steps';
  if (headerGraph === state.graph) return;
  headerGraph = state.graph;
  const graph = run.graphs[state.graph];
  if (!graph) {
    section.replaceChildren(el('p', {class: 'note'}, 'The log has no executions.'));
    return;
  }
  const duration = graph.series[0].summary;
  const queue = graph.series.find((s) => s.kind === 'queueWait');
  const explained = duration.mean ? (graph.stepMeanSum / duration.mean) * 100 : null;
  const queueFigures = queue ?
      [
        figure('queue wait p50', withUnit(queue.summary.p50)),
        figure('queue wait p99', withUnit(queue.summary.p99))
      ] :
      [];
  section.replaceChildren(
      el('h2', {}, 'Graph ', el('q', {}, graph.name)),
      el('ul', {class: 'figures'},
         figure('executions counted', formatValue(graph.executions - graph.skipped)),
         figure('skipped', formatValue(graph.skipped)),
         figure('duration p50', withUnit(duration.p50)), figure('p90', withUnit(duration.p90)),
         figure('p99', withUnit(duration.p99)), queueFigures,
         figure('mean duration', withUnit(duration.mean)),
         figure('sum of step means', withUnit(graph.stepMeanSum)),
         figure('steps explain', explained === null ? '-' : formatPercent(explained) + ' %'),
         el('li', {}, button('duration-detail', 'Duration detail', () => openStep(0))),
         queue ? el('li', {},
                    button(
                        'queue-detail', 'Queue wait detail',
                        () => openStep(graph.series.indexOf(queue)))) :
                 null));
}

// ---- the steps table ----

const stepColumns =
    [
      {key: 'name', label: 'step', text: true, value: (i) => i.series.name, format: formatText},
      {
        key: 'parent',
        label: 'parent',
        text: true,
        value: (i) => i.series.parent,
        format: formatText
      },
      {key: 'occurrence', label: '#', value: (i) => i.series.occurrence},
      {key: 'share', label: 'share %', value: (i) => i.series.share, format: formatPercent},
      {key: 'count', label: 'count', value: (i) => i.series.summary.count},
      {key: 'mean', label: 'mean', unit: true, value: (i) => i.series.summary.mean},
      {key: 'p50', label: 'p50', unit: true, value: (i) => i.series.summary.p50},
      {key: 'p90', label: 'p90', unit: true, value: (i) => i.series.summary.p90},
      {key: 'p99', label: 'p99', unit: true, value: (i) => i.series.summary.p99},
      {key: 'max', label: 'max', unit: true, value: (i) => i.series.summary.max},
      {key: 'first', label: 'first', unit: true, value: (i) => i.series.summary.first},
    ]
        .concat(
            comparison ?
                [
                  {
                    key: 'basep50',
                    label: 'base p50',
                    unit: true,
                    value: (i) => (i.compared ? i.compared.base.p50 : null)
                  },
                  {
                    key: 'change',
                    label: 'change %',
                    value: (i) => (i.compared ? i.compared.changePercent : null),
                    format: formatSigned,
                    cellClass: 'change'
                  }
                ] :
                []);

// The series of the graph of the measured kind, each with its index in the graph.
function stepItems(graph, measure) {
  return graph.series.map((series, index) => ({series, index}))
      .filter(({series}) => series.kind === measure)
      .map((item) => Object.assign(item, {compared: comparedRow(graph, item.series)}));
}

// The box plot of a series on the shared axis: box p25 to p75, median, whiskers p1 to p99, max.
function drawBox(series, scale, width) {
  const picture = svg(
      'svg', {width: width, height: 18, viewBox: `0 0 ${width} 18`, class: 'boxplot', role: 'img'});
  if (!series.box) return picture;
  const [p1, p25, p50, p75, p99] = series.box;
  const x = (value) => scale(value).toFixed(1);
  picture.append(
      tooltip(`p1 ${formatValue(p1)}, p25 ${formatValue(p25)}, p50 ${formatValue(p50)}, p75 ${
          formatValue(
              p75)}, p99 ${formatValue(p99)}, max ${formatValue(series.summary.max)} ${unit}`),
      svg('line', {class: 'whisker', x1: x(p1), x2: x(p99), y1: 9, y2: 9}),
      svg('line', {class: 'whisker', x1: x(p1), x2: x(p1), y1: 5, y2: 13}),
      svg('line', {class: 'whisker', x1: x(p99), x2: x(p99), y1: 5, y2: 13}), svg('rect', {
        class: 'box',
        x: x(p25),
        y: 3,
        width: Math.max(scale(p75) - scale(p25), 1).toFixed(1),
        height: 12
      }),
      svg('line', {class: 'median', x1: x(p50), x2: x(p50), y1: 2, y2: 16}),
      svg('circle', {class: 'max', cx: x(series.summary.max), cy: 9, r: 2}));
  return picture;
}

function drawAxis(ticks, scale, width, format) {
  const picture =
      svg('svg', {width: width, height: 16, viewBox: `0 0 ${width} 16`, 'aria-hidden': 'true'});
  for (const tick of ticks)
    picture.append(
        svg('line', {class: 'axis', x1: scale(tick), x2: scale(tick), y1: 12, y2: 16}),
        svg('text', {x: scale(tick), y: 10, 'text-anchor': 'middle', text: format(tick)}));
  return picture;
}

// One table per graph and measure, made when first shown.
const stepTables = new Map();

function stepTable(graph, measure) {
  const key = `${state.graph}/${measure}`;
  if (stepTables.has(key)) return stepTables.get(key);
  const items = stepItems(graph, measure);
  const boxed = items.filter((item) => item.series.box);
  const low = boxed.length ? Math.max(Math.min(...boxed.map((i) => i.series.box[0])), 1) : 1;
  const high = Math.max(...boxed.map((i) => i.series.summary.max), low + 1);
  const width = 240;
  const scale = logScale(low, high, 6, width - 6);
  const table = liveTable({
    id: 'steps',
    columns: stepColumns,
    picture: {
      header: [
        el('span', {}, `${measure === 'wait' ? 'waits' : 'spans'}, log axis, ${unit}`),
        drawAxis(logTicks(low, high, 6), scale, width, formatShort)
      ],
      draw: (item) => drawBox(item.series, scale, width)
    },
    rowClass: (item) => (item.compared ? [item.compared.verdict] : []),
    onSort: (column) =>
        update({sort: column.key, dir: nextDirection(column, state.sort, state.dir)}),
    onOpen: (item) => openStep(item.index === state.step ? null : item.index)
  });
  const entry = {table, items};
  stepTables.set(key, entry);
  return entry;
}

const stepsBar = toolbar('filter', 'Filter steps by name', (value) => update({filter: value}));
const measureSwitch =
    el('div', {class: 'switch', role: 'group', 'aria-label': 'Figures of each step'},
       [['span', 'Spans'], ['wait', 'Waits']].map(([measure, label]) => {
         const node = el('button', {type: 'button', 'data-measure': measure}, label);
         node.addEventListener('click', () => update({measure: measure, step: null}));
         return node;
       }));
const showAllSteps = button('show-all', '', () => update({all: !state.all}));
const copyButton = button('copy-csv', 'Copy table as CSV', () => copyCsv());
stepsBar.element.insertBefore(measureSwitch, stepsBar.status);
stepsBar.element.insertBefore(showAllSteps, stepsBar.status);
stepsBar.element.insertBefore(copyButton, stepsBar.status);
stepsBar.status.id = 'status';
const stepsNote = el('p', {class: 'note'});
const tableHost = el('div', {class: 'table-host'});
const detailHost = document.getElementById('detail-host');

function renderSteps() {
  const section = document.getElementById('table-section');
  const graph = run.graphs[state.graph];
  section.hidden = state.view !== 'steps' || !graph;
  if (section.hidden) {
    detailHost.hidden = true;
    return;
  }
  if (!section.firstChild) section.append(stepsBar.element, tableHost, stepsNote);
  const {table, items} = stepTable(graph, state.measure);
  if (tableHost.firstChild !== table.element) tableHost.replaceChildren(table.element);
  setFilterValue(stepsBar.filter, state.filter);
  for (const node of measureSwitch.children)
    node.setAttribute('aria-pressed', String(node.getAttribute('data-measure') === state.measure));
  measureSwitch.hidden = !graph.series.some((s) => s.kind === 'wait');
  const matching =
      items.filter((item) => matchesFilter(state.filter, item.series.name, item.series.parent));
  const visible = showSorted(
      table, matching, stepColumns.find((c) => c.key === state.sort) || stepColumns[3], state.dir,
      state.all, showAllSteps);
  const noun = state.measure === 'wait' ? 'waits' : 'steps';
  stepsBar.status.textContent = `${visible.length} of ${items.length} ${noun}`;
  stepsNote.textContent = items.length === 0 ?
      (state.measure === 'wait' ? 'No step of this graph has a wait.' :
                                  'The executions of this graph have no steps.') :
      matching.length === 0 ? 'No step matches the filter.' :
                              '';
  stepsNote.hidden = !stepsNote.textContent;
  renderStepDetail(graph, table);
}

function csvField(text) {
  const value = missing(text) ? '' : String(text);
  return /[",\r\n]/.test(value) ? '"' + value.replace(/"/g, '""') + '"' : value;
}

function copyCsv() {
  const status = stepsBar.status;
  const items = stepTable(run.graphs[state.graph], state.measure).table.shownItems();
  const lines = [stepColumns.map((c) => c.key).join(',')];
  for (const item of items) lines.push(stepColumns.map((c) => csvField(c.value(item))).join(','));
  const text = lines.join('\n') + '\n';
  const done = () => (status.textContent = `Copied ${items.length} rows as CSV`);
  const fallback = () => {
    const area = el('textarea', {}, text);
    document.body.append(area);
    area.select();
    const copied = document.execCommand('copy');
    area.remove();
    if (copied)
      done();
    else
      status.textContent = 'The browser refused to copy';
  };
  if (navigator.clipboard)
    navigator.clipboard.writeText(text).then(done, fallback);
  else
    fallback();
}

// ---- pictures of a detail ----

const plot = {
  width: 560,
  height: 240,
  left: 56,
  right: 16,
  top: 30,  // room for the marks' labels above the data
  bottom: 36
};

function frame(label, xLabel, yLabel) {
  return svg(
      'svg', {
        viewBox: `0 0 ${plot.width} ${plot.height}`,
        width: '100%',
        role: 'img',
        'aria-label': label
      },
      svg('line', {
        class: 'axis',
        x1: plot.left,
        x2: plot.width - plot.right,
        y1: plot.height - plot.bottom,
        y2: plot.height - plot.bottom
      }),
      svg('line', {
        class: 'axis',
        x1: plot.left,
        x2: plot.left,
        y1: plot.top,
        y2: plot.height - plot.bottom
      }),
      svg('text', {
        x: (plot.left + plot.width - plot.right) / 2,
        y: plot.height - 4,
        'text-anchor': 'middle',
        text: xLabel
      }),
      svg('text', {
        x: 12,
        y: (plot.top + plot.height - plot.bottom) / 2,
        'text-anchor': 'middle',
        transform: `rotate(-90 12 ${(plot.top + plot.height - plot.bottom) / 2})`,
        text: yLabel
      }));
}

function xTicks(picture, ticks, scale, format) {
  for (const tick of ticks)
    picture.append(
        svg('line', {
          class: 'axis',
          x1: scale(tick),
          x2: scale(tick),
          y1: plot.height - plot.bottom,
          y2: plot.height - plot.bottom + 4
        }),
        svg('text', {
          x: scale(tick),
          y: plot.height - plot.bottom + 16,
          'text-anchor': 'middle',
          text: format(tick)
        }));
}

function yTicks(picture, ticks, scale, format) {
  for (const tick of ticks)
    picture.append(
        svg('line', {
          class: 'grid',
          x1: plot.left,
          x2: plot.width - plot.right,
          y1: scale(tick),
          y2: scale(tick)
        }),
        svg('text',
            {x: plot.left - 6, y: scale(tick) + 4, 'text-anchor': 'end', text: format(tick)}));
}

const labelCharWidth = 6.2;  // px of an 11 px label's character, for keeping labels apart

// Dashed vertical lines, each labelled above the data; a label that would overlap the one
// before it moves up a line, so labels never collide.
function verticalMarks(picture, marks) {
  const placed = [];
  for (const {x, label, cls} of marks.slice().sort((a, b) => a.x - b.x)) {
    const width = label.length * labelCharWidth;
    const right = x + 3 + width > plot.width;
    const from = right ? x - 3 - width : x + 3;
    let line = 0;
    while (placed.some((p) => p.line === line && from < p.to + 4 && from + width > p.from - 4))
      line += 1;
    placed.push({line, from, to: from + width});
    const y = plot.top - 4 - line * 14;
    picture.append(
        svg('line',
            {class: 'mark ' + (cls || ''), x1: x, x2: x, y1: y + 2, y2: plot.height - plot.bottom}),
        svg('text', {
          class: 'label ' + (cls || ''),
          x: right ? x - 3 : x + 3,
          y: y,
          'text-anchor': right ? 'end' : 'start',
          text: label
        }));
  }
}

// Bars of counts on the histogram's bins, equal on a log axis or whole-number bins on a linear
// one; an overlay adds a second series as an outline on the same bins.
function drawHistogram(histogram, label, marks, overlay) {
  const log = histogram.scale === 'log';
  const picture = frame(label, `${log ? 'value (log axis)' : 'value'}, ${unit}`, 'executions');
  const bins = histogram.counts.length;
  const low = log ? Math.max(histogram.low, 1) : histogram.low;
  const high = log ? histogram.high : histogram.low + bins * histogram.width;
  const from = plot.left + 4;
  const to = plot.width - plot.right - 4;
  const x = log ? logScale(low, high, from, to) : linearScale(low, high, from, to);
  const at = log ? x : (value) => x(value + 0.5);  // a whole number's cell has its middle at +0.5
  const most = Math.max(...histogram.counts, ...(overlay ? overlay.counts : []), 1);
  const y = linearScale(0, most, plot.height - plot.bottom, plot.top + 4);
  yTicks(picture, linearTicks(0, most, 4).filter(Number.isInteger), y, formatShort);
  const edge = (i) => from + ((to - from) * i) / bins;
  histogram.counts.forEach((count, i) => {
    if (count)
      picture.append(
          svg('rect', {
            class: overlay ? 'new' : 'bar',
            x: edge(i),
            width: Math.max(edge(i + 1) - edge(i) - 1, 1),
            y: y(count),
            height: y(0) - y(count)
          },
              tooltip(`${formatValue(count)} executions`)));
  });
  if (overlay) {
    let path = `M ${edge(0)} ${y(0)}`;
    overlay.counts.forEach(
        (count, i) => (path += ` L ${edge(i)} ${y(count)} L ${edge(i + 1)} ${y(count)}`));
    picture.append(svg('path', {class: 'base', d: path + ` L ${edge(bins)} ${y(0)}`}));
  }
  const ticks =
      log ? logTicks(low, high, 6) : linearTicks(low, high - 1, 5).filter(Number.isInteger);
  xTicks(picture, ticks, at, formatShort);
  verticalMarks(
      picture,
      marks.filter((mark) => !missing(mark.value))
          .map((mark) => ({x: at(mark.value), label: mark.label, cls: mark.cls})));
  return picture;
}

// Each kept point against its position in execution order; the skipped ones grey behind the
// cut, the cold first execution ringed.
function drawExecutions(series) {
  const points = series.points;
  const picture =
      frame('values in execution order', 'value number, in execution order', `value, ${unit}`);
  if (!points.value.length) return picture;
  const low = Math.min(...points.value);
  const high = Math.max(...points.value);
  const pad = (high - low) * 0.05 || Math.max(high * 0.05, 1);
  const x =
      linearScale(0, Math.max(points.values - 1, 1), plot.left + 4, plot.width - plot.right - 4);
  const y = linearScale(Math.max(low - pad, 0), high + pad, plot.height - plot.bottom, plot.top);
  yTicks(picture, linearTicks(Math.max(low - pad, 0), high + pad, 4), y, formatShort);
  xTicks(
      picture, linearTicks(0, Math.max(points.values - 1, 1), 5).filter(Number.isInteger), x,
      formatShort);
  const dots = svg('g', {});
  let index = 0;
  points.value.forEach((value, i) => {
    index = points.gaps ? index + points.gaps[i] : i;  // the gaps add up to each index
    dots.append(svg('circle', {
      class: index < points.skipped ? 'point skipped' : 'point',
      cx: x(index).toFixed(1),
      cy: y(value).toFixed(1),
      r: 1.6
    }));
  });
  picture.append(dots);
  const marks = [];
  if (points.skipped)
    marks.push({x: x(points.skipped - 0.5), label: `--skip-first ${data.skipFirst}`, cls: 'cut'});
  if (series.summary.first !== null && (!points.gaps || points.gaps[0] === 0)) {
    picture.append(
        svg('circle', {class: 'first', cx: x(0), cy: y(series.summary.first), r: 5},
            tooltip(`first execution: ${withUnit(series.summary.first)}`)));
    marks.push({x: x(0), label: 'first (cold)', cls: 'first-mark'});
  }
  verticalMarks(picture, marks);
  return picture;
}

function seriesTitle(series) {
  const where = series.parent !== null ? ` under ${series.parent}` : '';
  const occurrence = series.occurrence ? `, occurrence ${series.occurrence}` : '';
  return `${series.name} (${series.kind}${where}${occurrence})`;
}

function closeButton(id, onClose) {
  return button(id, 'Close', (event) => {
    event.stopPropagation();
    onClose();
  });
}

// ---- a step's detail, under its row ----

let shownStep = null;  // the graph and series the detail panel was built for
const stepPanel = el('div', {id: 'detail', class: 'panel'});

function buildStepPanel(series) {
  const s = series.summary;
  const thinned = series.points.gaps ?
      ` (${
          formatValue(
              series.points.value.length)} of them drawn: the smallest and largest of equal runs)` :
      '';
  stepPanel.replaceChildren(
      el('header', {}, el('h2', {}, seriesTitle(series)),
         closeButton('close-detail', () => closeDetail())),
      el('ul', {class: 'figures'}, figure('count', formatValue(s.count)),
         ['mean', 'stddev', 'min', 'p50', 'p90', 'p99', 'max', 'first'].map(
             (key) => figure(key, withUnit(s[key])))),
      s.count === 0 ?
          el('p', {class: 'note'}, 'No counted execution has this series.') :
          el('div', {class: 'pictures'},
             el('figure', {id: 'histogram'},
                drawHistogram(
                    series.histogram, 'histogram',
                    [{value: s.p50, label: 'p50'}, {value: s.p99, label: 'p99'}]),
                el('figcaption', {},
                   `Histogram of the ${formatValue(s.count)} counted values in ${
                       series.histogram.counts.length} bins of equal width` +
                       (series.histogram.scale === 'log' ?
                            ' on a log axis.' :
                            ` (${withUnit(series.histogram.width)} each).`))),
             el('figure', {id: 'executions'}, drawExecutions(series),
                el('figcaption', {},
                   `All ${formatValue(series.points.values)} values in execution order${thinned}.` +
                       (series.points.skipped ? ' Grey: skipped executions.' : '')))));
}

function renderStepDetail(graph, table) {
  const series = state.step !== null ? graph.series[state.step] : null;
  const key = series ? `${state.graph}/${state.step}` : null;
  if (key && key !== shownStep) buildStepPanel(series);
  shownStep = key;
  const underRow = table.placeDetail(series ? {index: state.step} : null, stepPanel);
  // A series outside the table (the duration, or one filtered out) opens above it.
  detailHost.hidden = !series || underRow;
  if (!detailHost.hidden) detailHost.replaceChildren(stepPanel);
}

function openStep(index) {
  update({step: index});
  if (index !== null) revealPanel(stepPanel);
}

// The open panel in view without moving the page more than it needs.
function revealPanel(panel) {
  if (panel.isConnected) panel.scrollIntoView({block: 'nearest'});
}

// The table of the view shown, none before it is built.
function shownTable() {
  if (state.view === 'steps') return stepTable(run.graphs[state.graph], state.measure).table;
  const view = state.view === 'history' ? historyView : comparisonView;
  return view && view.table;
}

function closeDetail() {
  const open = {steps: 'step', comparison: 'row', history: 'series'}[state.view];
  const focused = state[open];
  if (focused === null) return;
  update({[open]: null});
  const table = shownTable();
  const row = table && table.rowOfIndex(focused);
  if (row && !row.hidden) row.focus({preventScroll: true});
}

// ---- the comparison ----

const verdictSigns = {
  slower: '\u25b2 slower',
  faster: '\u25bc faster',
  same: '= same',
  unsure: '? unsure',
  added: '+ added',
  removed: '\u2212 removed'
};
const verdictRank = {
  slower: 0,
  faster: 1,
  unsure: 2,
  same: 3,
  added: 4,
  removed: 5
};

const comparisonColumns = [
  {
    key: 'verdict',
    label: 'verdict',
    text: true,
    ascending: true,
    cellClass: 'verdict',
    value: (i) => verdictRank[i.row.verdict] ?? 6,
    cell: (i) => verdictSigns[i.row.verdict] || i.row.verdict
  },
  {key: 'graph', label: 'graph', text: true, value: (i) => i.row.graph, format: formatText},
  {key: 'series', label: 'series', text: true, value: (i) => i.row.kind, format: formatText},
  {key: 'name', label: 'name', text: true, value: (i) => i.row.name, format: formatText},
  {key: 'parent', label: 'parent', text: true, value: (i) => i.row.parent, format: formatText},
  {key: 'basep50', label: 'base p50', unit: true, value: (i) => i.row.base.p50},
  {key: 'newp50', label: 'new p50', unit: true, value: (i) => i.row.new.p50},
  {
    key: 'change',
    label: 'change %',
    value: (i) => i.row.changePercent,
    format: formatSigned,
    cellClass: 'change'
  },
  {
    key: 'interval',
    label: 'interval %',
    value: (i) => (i.row.interval ? i.row.interval[0] : null),
    cell: (i) => formatInterval(i.row.interval)
  },
  {key: 'p', label: 'p adjusted', ascending: true, value: (i) => i.row.pAdjusted, format: formatP},
  {
    key: 'needed',
    label: 'needed',
    value: (i) => (i.row.needed ? Math.max(i.row.needed.base, i.row.needed.new) : null),
    cell: (i) => formatNeeded(i.row.needed)
  },
];

// The forest plot's reach in percent: what most rows need, not what the largest change needs;
// rows beyond it end in an arrow with their value written.
function forestReach(rows, threshold) {
  const sizes = rows.filter((r) => !missing(r.changePercent))
                    .map((r) => Math.abs(r.changePercent))
                    .sort((a, b) => a - b);
  const p90 = sizes.length ? sizes[Math.min(Math.ceil(sizes.length * 0.9), sizes.length) - 1] : 0;
  const margins = rows.filter((r) => !missing(r.margin)).map((r) => r.margin);
  const band = Math.max(threshold, ...margins.filter((m) => m <= threshold * 3));
  return Math.max(band * 3, p90 * 1.15, 1);
}

// One row's change as a dot with its interval against its own margin's band.
function drawForest(row, scale, width, threshold) {
  const height = 20;
  const picture = svg('svg', {
    width: width,
    height: height,
    viewBox: `0 0 ${width} ${height}`,
    role: 'img',
    'aria-label': formatChange(row.changePercent, row.interval),
    class: 'forest ' + row.verdict
  });
  const clamp = (value) => Math.min(Math.max(scale(value), 0), width);
  if (!missing(row.margin))
    picture.append(svg('rect', {
      class: row.margin > threshold + 1e-9 ? 'band wider' : 'band',
      x: clamp(-row.margin),
      width: clamp(row.margin) - clamp(-row.margin),
      y: 0,
      height: height
    }));
  picture.append(svg('line', {class: 'zero', x1: scale(0), x2: scale(0), y1: 0, y2: height}));
  if (missing(row.changePercent)) return picture;
  const g = svg('g', {class: row.verdict}, tooltip(formatChange(row.changePercent, row.interval)));
  const inside = (value) => scale(value) >= 0 && scale(value) <= width;
  if (row.interval)
    g.append(svg('line', {
      class: 'interval',
      x1: clamp(row.interval[0]),
      x2: clamp(row.interval[1]),
      y1: height / 2,
      y2: height / 2
    }));
  if (inside(row.changePercent)) {
    g.append(
        svg('circle', {class: 'estimate', cx: scale(row.changePercent), cy: height / 2, r: 3.5}));
  } else {
    // Beyond the axis: an arrow at its edge and the value beside it.
    const right = row.changePercent > 0;
    const tip = right ? width : 0;
    const back = right ? width - 8 : 8;
    g.append(
        svg('path', {
          class: 'beyond',
          d: `M ${tip} ${height / 2} L ${back} ${height / 2 - 5} L ${back} ${height / 2 + 5} Z`
        }),
        svg('text', {
          class: 'beyond-label',
          x: right ? back - 3 : back + 3,
          y: height / 2 + 4,
          'text-anchor': right ? 'end' : 'start',
          text: formatSigned(row.changePercent) + ' %'
        }));
  }
  picture.append(g);
  return picture;
}

let comparisonView = null;  // built when first shown

function buildComparison() {
  const section = document.getElementById('comparison');
  const totals = comparison.totals;
  const threshold = comparison.threshold;
  const reach = forestReach(comparison.rows, threshold);
  const width = 260;
  const scale = linearScale(-reach, reach, 4, width - 4);
  const ticks = linearTicks(-reach, reach, 4);
  const axis = drawAxis(ticks, scale, width, (t) => (t > 0 ? '+' : '') + t + '%');
  const items = comparison.rows.map((row, index) => ({row, index}));
  const table = liveTable({
    id: 'comparison-table',
    columns: comparisonColumns,
    picture: {
      header: [el('span', {}, `change %, band \u00b1${threshold}`), axis],
      draw: (item) => drawForest(item.row, scale, width, threshold)
    },
    rowClass: (item) => [item.row.verdict],
    onSort: (column) =>
        update({csort: column.key, cdir: nextDirection(column, state.csort, state.cdir)}),
    onOpen: (item) => openRow(item.index === state.row ? null : item.index)
  });
  const bar =
      toolbar('comparison-filter', 'Filter series by name', (value) => update({cfilter: value}));
  const sameButton = button('show-same', '', () => update({same: !state.same}));
  const allButton = button('show-all-rows', '', () => update({call: !state.call}));
  bar.element.insertBefore(sameButton, bar.status);
  bar.element.insertBefore(allButton, bar.status);
  bar.status.id = 'comparison-status';
  const shifts = comparison.graphs.map(
      (g) => figure(
          `run-wide shift of ${g.name}`,
          g.runShift ? formatChange(g.runShift.changePercent, g.runShift.interval) : '-'));
  const note = el('p', {class: 'note'});
  section.replaceChildren(
      el('h2', {}, 'Comparison'),
      el('ul', {class: 'figures'},
         ['slower', 'faster', 'same', 'unsure', 'added', 'removed'].map(
             (v) => figure(verdictSigns[v], formatValue(totals[v]))),
         shifts),
      el('p', {class: 'note'},
         `Slower or faster: the Holm-adjusted p-value is below ${
             comparison.alpha} and the change leaves the band of its margin (\u00b1${
             threshold} % of the base median` +
             (comparison.minChange ? `, or ${withUnit(comparison.minChange)} if larger` : '') +
             ')' + (comparison.relative ? ', net of its graph\u2019s run-wide shift' : '') +
             `. Same: the whole ${
                 Math.round(
                     (1 - 2 * comparison.alpha) *
                     100)} % interval lies within the band. Unsure: neither; needed is the executions per run that would tell. ` +
             'Each dot is the change of a series\u2019 values (the median of all differences, in percent of the base median), its line the interval. Click a row to overlay both runs\u2019 distributions under it.'),
      bar.element, el('div', {id: 'overlay-host'}), table.element, note);
  comparisonView = {table, items, bar, sameButton, allButton, note};
}

function renderComparison() {
  const section = document.getElementById('comparison');
  section.hidden = state.view !== 'comparison';
  if (section.hidden) return;
  if (!comparisonView) buildComparison();
  const {table, items, bar, sameButton, allButton, note} = comparisonView;
  setFilterValue(bar.filter, state.cfilter);
  const matching = items.filter(
      (item) => matchesFilter(
          state.cfilter, item.row.name, item.row.parent, item.row.graph, item.row.kind));
  const folded = state.same ? 0 : matching.filter((item) => item.row.verdict === 'same').length;
  const unfolded = state.same ? matching : matching.filter((item) => item.row.verdict !== 'same');
  const visible = showSorted(
      table, unfolded, comparisonColumns.find((c) => c.key === state.csort) || comparisonColumns[0],
      state.cdir, state.call, allButton);
  const sameCount = matching.filter((item) => item.row.verdict === 'same').length;
  sameButton.hidden = sameCount === 0;
  sameButton.textContent = state.same ? 'Fold the same rows' : `Show ${sameCount} same rows`;
  bar.status.textContent =
      `${visible.length} of ${items.length} series` + (folded ? `, ${folded} same folded` : '');
  note.textContent = matching.length === 0 ? 'No series matches the filter.' : '';
  note.hidden = !note.textContent;
  renderOverlay(table);
}

// ---- a comparison row's detail, under its row ----

let shownRow = null;
const overlayPanel = el('div', {id: 'overlay', class: 'panel'});

function buildOverlayPanel(row) {
  const parts =
      [el('header', {},
          el('h3', {},
             `${verdictSigns[row.verdict]}: ${row.name} (${row.kind} of ${row.graph}), ${
                 formatChange(row.changePercent, row.interval)}`),
          closeButton('close-overlay', () => closeDetail()))];
  parts.push(
      el('ul', {class: 'figures'}, figure('base count', formatValue(row.base.count)),
         figure('base p50', withUnit(row.base.p50)),
         figure('new count', formatValue(row.new.count)), figure('new p50', withUnit(row.new.p50)),
         figure('change', formatChange(row.changePercent, row.interval)),
         figure('margin', missing(row.margin) ? '-' : `\u00b1${formatPercent(row.margin)} %`),
         figure('p adjusted', formatP(row.pAdjusted)), figure('needed', formatNeeded(row.needed))));
  if (!missing(row.changePercent)) parts.push(drawRowChange(row));
  if (row.overlay) {
    const bins = (counts) => Object.assign({}, row.overlay, {counts});
    const picture = drawHistogram(
        bins(row.overlay.new), 'base and new distributions',
        [
          {value: row.base.p50, label: `base p50 ${formatValue(row.base.p50)}`, cls: 'base-mark'},
          {value: row.new.p50, label: `new p50 ${formatValue(row.new.p50)}`, cls: 'new-mark'}
        ],
        bins(row.overlay.base));
    parts.push(
        el('figure', {}, picture,
           el('figcaption', {}, el('span', {class: 'swatch base'}), ' base run (outline)  ',
              el('span', {class: 'swatch new'}), ' new run (filled), on the same bins')));
  } else {
    parts.push(el('p', {class: 'note'}, 'Only one run has values of this series.'));
  }
  overlayPanel.replaceChildren(...parts);
}

// The row's change, interval and band on an axis of its own, wide enough for all three.
function drawRowChange(row) {
  const ends = [row.changePercent, ...(row.interval || []), row.margin || 0, -(row.margin || 0)];
  const reach = Math.max(...ends.map(Math.abs), 1) * 1.15;
  const width = 560;
  const scale = linearScale(-reach, reach, 6, width - 6);
  const format = (t) => (t > 0 ? '+' : '') + formatShort(t) + ' %';
  return el(
      'figure', {class: 'row-change'},
      drawAxis(linearTicks(-reach, reach, 6), scale, width, format),
      drawForest(row, scale, width, comparison.threshold),
      el('figcaption', {},
         `Change ${formatChange(row.changePercent, row.interval)}: the dot, its ${
             Math.round((1 - 2 * comparison.alpha) * 100)} % interval the line, ` +
             (missing(row.margin) ? 'no band (no base median).' :
                                    `the band \u00b1${formatPercent(row.margin)} %.`)));
}

function renderOverlay(table) {
  const row = state.row !== null ? comparison.rows[state.row] : null;
  if (row && shownRow !== state.row) buildOverlayPanel(row);
  shownRow = row ? state.row : null;
  placePanel(table, row ? state.row : null, overlayPanel, document.getElementById('overlay-host'));
}

function openRow(index) {
  update({row: index});
  if (index !== null) revealPanel(overlayPanel);
}

// ---- the history of runs ----

const historyColumns = [
  {
    key: 'latest',
    label: 'latest change',
    text: true,
    cellClass: 'verdict',
    value: (i) => (i.latest ? i.latest.run : null),
    cell: (i) => (i.latest ? `${verdictSigns[i.latest.verdict]} at run ${i.latest.run}` : '-')
  },
  {key: 'graph', label: 'graph', text: true, value: (i) => i.series.graph, format: formatText},
  {key: 'series', label: 'series', text: true, value: (i) => i.series.series, format: formatText},
  {key: 'name', label: 'name', text: true, value: (i) => i.series.name, format: formatText},
  {key: 'parent', label: 'parent', text: true, value: (i) => i.series.parent, format: formatText},
  {key: 'changes', label: 'changes', value: (i) => i.series.changes.length},
  {
    key: 'change',
    label: 'change %',
    value: (i) => (i.latest ? i.latest.changePercent : null),
    format: formatSigned,
    cellClass: 'change'
  },
  {key: 'last', label: 'last value', unit: true, value: (i) => i.last},
];

const runCount = historyData ? historyData.runs.length : 0;

function runLabel(index) {
  const runOf = historyData.runs[index];
  const created = missing(runOf.created) ?
      '' :
      `, ${new Date(runOf.created / 1000).toISOString().slice(0, 16).replace('T', ' ')} UTC`;
  return `run ${index}: ${runOf.source}${created}`;
}

function changeText(change) {
  const sign = verdictSigns[change.verdict] || change.verdict;
  return missing(change.changePercent) ?
      `${sign} at run ${change.run}` :
      `${sign} at run ${change.run}, ${formatChange(change.changePercent, change.interval)}`;
}

// The series' values as a line broken where a run has none.
function valuePath(values, x, y) {
  let path = '';
  let drawing = false;
  values.forEach((value, run) => {
    if (missing(value)) {
      drawing = false;
      return;
    }
    path += `${drawing ? 'L' : 'M'} ${x(run).toFixed(1)} ${y(value).toFixed(1)} `;
    drawing = true;
  });
  return path;
}

function valueRange(series) {
  const values = series.values.filter((v) => !missing(v));
  const low = values.length ? Math.min(...values) : 0;
  const high = values.length ? Math.max(...values) : 1;
  const pad = (high - low) * 0.08 || Math.max(high * 0.05, 1);
  return [Math.max(low - pad, 0), high + pad];
}

// A change between two runs: a dashed line, and its verdict as a shape (up slower, down faster,
// plus added, minus removed), so that it reads without its colour.
function changeMark(change, x, top, bottom) {
  const at = x(change.run - 0.5);
  const shapes = {
    slower: `M ${at - 4} ${top + 6} L ${at + 4} ${top + 6} L ${at} ${top} Z`,
    faster: `M ${at - 4} ${top} L ${at + 4} ${top} L ${at} ${top + 6} Z`,
    added: `M ${at - 4} ${top + 3} H ${at + 4} M ${at} ${top - 1} V ${top + 7}`,
    removed: `M ${at - 4} ${top + 3} H ${at + 4}`
  };
  return svg(
      'g', {class: `change-mark ${change.verdict}`}, tooltip(changeText(change)),
      svg('line', {class: 'mark', x1: at, x2: at, y1: top, y2: bottom}),
      svg('path', {class: 'shape', d: shapes[change.verdict] || shapes.removed}));
}

function drawSparkline(series, width) {
  const height = 26;
  const picture = svg('svg', {
    width: width,
    height: height,
    viewBox: `0 0 ${width} ${height}`,
    class: 'sparkline',
    role: 'img',
    'aria-label': series.changes.length ? series.changes.map(changeText).join('; ') : 'no change'
  });
  const [low, high] = valueRange(series);
  const x = linearScale(0, Math.max(runCount - 1, 1), 6, width - 6);
  const y = linearScale(low, high, height - 3, 9);
  for (const change of series.changes) picture.append(changeMark(change, x, 0, height));
  picture.append(svg('path', {class: 'values', d: valuePath(series.values, x, y)}));
  return picture;
}

// The series' value per run, the median on either side of each change, and each change's
// interval as a bar from the median before, its sources in each point's tooltip.
function drawHistoryChart(series) {
  const picture =
      frame(`values of ${series.name} per run`, 'run', `${historyData.figure}, ${unit}`);
  const [low, high] = valueRange(series);
  const bounds = [low, high];
  for (const change of series.changes)
    if (change.interval && !missing(change.before))
      bounds.push(...change.interval.map((p) => change.before * (1 + p / 100)));
  const bottom = Math.max(Math.min(...bounds), 0);
  const top = Math.max(...bounds);
  const x = linearScale(0, Math.max(runCount - 1, 1), plot.left + 10, plot.width - plot.right - 10);
  const y = linearScale(bottom, top, plot.height - plot.bottom, plot.top + 4);
  yTicks(
      picture, linearTicks(bottom, top, 4), y, formatValue);  // runs differ by little: whole digits
  xTicks(
      picture, linearTicks(0, Math.max(runCount - 1, 1), 6).filter(Number.isInteger), x,
      formatShort);
  const bottomY = plot.height - plot.bottom;
  series.changes.forEach((change, i) => {
    picture.append(changeMark(change, x, plot.top - 12, bottomY));
    const from = i ? series.changes[i - 1].run - 0.5 : 0;
    const to = i + 1 < series.changes.length ? series.changes[i + 1].run - 0.5 : runCount - 1;
    const level = (value, a, b) =>
        (missing(value) ?
             null :
             svg('line', {class: 'level', x1: x(a), x2: x(b), y1: y(value), y2: y(value)}));
    picture.append(
        level(change.before, from, change.run - 0.5), level(change.after, change.run - 0.5, to));
    if (change.interval && !missing(change.before)) {
      const [a, b] = change.interval.map((p) => y(change.before * (1 + p / 100)));
      const at = x(change.run - 0.5) + 6;
      const bar = `M ${at - 3} ${a} H ${at + 3} M ${at} ${a} V ${b} M ${at - 3} ${b} H ${at + 3}`;
      picture.append(
          svg('path', {class: `interval ${change.verdict}`, d: bar},
              tooltip(`interval of the change: ${formatInterval(change.interval)}`)));
    }
  });
  picture.append(svg('path', {class: 'values', d: valuePath(series.values, x, y)}));
  const dots = svg('g', {});
  series.values.forEach((value, run) => {
    if (!missing(value))
      dots.append(
          svg('circle', {class: 'point', cx: x(run).toFixed(1), cy: y(value).toFixed(1), r: 3},
              tooltip(`${runLabel(run)}: ${withUnit(value)}`)));
  });
  picture.append(dots);
  return picture;
}

let historyView = null;  // built when first shown
let shownSeries = null;
const seriesPanel = el('div', {id: 'series-detail', class: 'panel'});

function buildSeriesPanel(series) {
  seriesPanel.replaceChildren(
      el('header', {},
         el('h3', {},
            `${series.name} (${series.series} of ${series.graph}${
                series.parent !== null ? ` under ${series.parent}` : ''})`),
         closeButton('close-series', () => closeDetail())),
      el('ul', {class: 'figures'},
         series.changes.map((change) => figure('change', changeText(change)))),
      el('figure', {}, drawHistoryChart(series),
         el('figcaption', {},
            `Each run\u2019s ${historyData.figure} over its counted executions (hover a point ` +
                'for its run\u2019s source); solid lines: the median of the runs on either side ' +
                'of a change; the bar beside a change: its interval from the median before. ' +
                'Each history run keeps one figure, so no band of its executions is drawn.')));
}

function buildHistory() {
  const totals = historyData.totals;
  const items = historyData.series.map((series, index) => {
    const values = series.values.filter((v) => !missing(v));
    return {
      series,
      index,
      latest: series.changes.length ? series.changes[series.changes.length - 1] : null,
      last: values.length ? values[values.length - 1] : null
    };
  });
  const width = 260;
  const table = liveTable({
    id: 'history-table',
    columns: historyColumns,
    picture: {
      header: el('span', {}, `${historyData.figure} per run, ${runCount} runs`),
      draw: (item) => drawSparkline(item.series, width)
    },
    rowClass: (item) => (item.latest ? [item.latest.verdict] : []),
    onSort: (column) =>
        update({hsort: column.key, hdir: nextDirection(column, state.hsort, state.hdir)}),
    onOpen: (item) => openSeries(item.index === state.series ? null : item.index)
  });
  const bar =
      toolbar('history-filter', 'Filter series by name', (value) => update({hfilter: value}));
  const allButton = button('show-all-series', '', () => update({hall: !state.hall}));
  bar.element.insertBefore(allButton, bar.status);
  bar.status.id = 'history-status';
  const runWide = historyData.graphs.map(
      (g) => figure(
          `run-wide changes of ${g.graph}`,
          g.runWide.length ? g.runWide.map(changeText).join('; ') : 'none'));
  const note = el('p', {class: 'note'});
  document.getElementById('history').replaceChildren(
      el('ul', {class: 'figures'}, figure('runs', formatValue(runCount)),
         ['series', 'slower', 'faster', 'added', 'removed'].map(
             (key) => figure(verdictSigns[key] || key, formatValue(totals[key]))),
         figure(`slower in the last ${historyData.gate} runs`, formatValue(totals.slowerInGate)),
         runWide),
      el('p', {class: 'note'},
         historyData.tooFewRuns ?
             `Too few runs to find a change: at least ${2 * historyData.minRuns} are needed.` :
             'A change is slower or faster when its rank test, Holm-adjusted over the history, ' +
                 `is below ${historyData.alpha} and its shift exceeds ${historyData.threshold} % ` +
                 `with at least ${historyData.minRuns} runs on each side` +
                 (historyData.relative ? ', net of its graph\u2019s run-wide factor' : '') +
                 '. Rows by their latest change; click one for its chart.'),
      bar.element, el('div', {id: 'series-host'}), table.element, note);
  historyView = {table, items, bar, allButton, note};
}

function renderHistory() {
  const section = document.getElementById('history');
  section.hidden = state.view !== 'history';
  if (section.hidden) return;
  if (!historyView) buildHistory();
  const {table, items, bar, allButton, note} = historyView;
  setFilterValue(bar.filter, state.hfilter);
  const matching = items.filter(
      (item) => matchesFilter(
          state.hfilter, item.series.name, item.series.parent, item.series.graph,
          item.series.series));
  const visible = showSorted(
      table, matching, historyColumns.find((c) => c.key === state.hsort) || historyColumns[0],
      state.hdir, state.hall, allButton);
  bar.status.textContent = `${visible.length} of ${items.length} series`;
  note.textContent = matching.length === 0 ? 'No series matches the filter.' : '';
  note.hidden = !note.textContent;
  const series = state.series !== null ? historyData.series[state.series] : null;
  if (series && shownSeries !== state.series) buildSeriesPanel(series);
  shownSeries = series ? state.series : null;
  placePanel(
      table, series ? state.series : null, seriesPanel, document.getElementById('series-host'));
}

function openSeries(index) {
  update({series: index});
  if (index !== null) revealPanel(seriesPanel);
}

// ---- keys and start ----

function apply() {
  updateNav();
  renderGraphHeader();
  renderSteps();
  renderComparison();
  renderHistory();
}

function moveSelection(step) {
  const table = shownTable();
  const rows = table ? table.shownRows() : [];
  if (!rows.length) return;
  const at = rows.indexOf(document.activeElement);
  rows[Math.min(Math.max(at + step, 0), rows.length - 1)].focus();
}

document.addEventListener('keydown', (event) => {
  if (event.target instanceof HTMLInputElement) {
    if (event.key === 'Escape') event.target.blur();
    return;
  }
  if (event.key === '/') {
    event.preventDefault();
    const filters = {steps: 'filter', comparison: 'comparison-filter', history: 'history-filter'};
    document.getElementById(filters[state.view]).focus();
  } else if (event.key === 'Escape') {
    closeDetail();
  } else if (event.key === 'j') {
    moveSelection(1);
  } else if (event.key === 'k') {
    moveSelection(-1);
  }
});
window.addEventListener('hashchange', () => {
  readState();
  apply();
});

if (data.schema !== supportedSchema) {
  document.getElementById('graph').replaceChildren(
      el('p', {class: 'note'}, `This page cannot draw data of schema ${data.schema}.`));
  return;
}
buildNav();
buildBanner();
readState();
if (!location.hash && comparison && comparison.totals.slower) state.view = 'comparison';
apply();
})();
