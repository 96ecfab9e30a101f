// The report page's renderer. The program computed every figure and embedded it as JSON; this
// script only draws it as SVG, reacts to clicks and keys, and keeps the view in the URL's #.
// Text from the log only ever enters the page as text nodes, never as markup.
'use strict';
(function() {
const data = JSON.parse(document.getElementById('report-data').textContent);
const supportedSchema = 1;
const svgNs = 'http://www.w3.org/2000/svg';
const topRows = 50;  // rows of a big graph shown until "show all"
const runs = data.runs;
const run = runs[runs.length - 1];
const comparison = data.comparison || null;

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

// ---- numbers ----

const integerFormat = new Intl.NumberFormat('en-US', {maximumFractionDigits: 0});
const decimalFormat = new Intl.NumberFormat('en-US', {maximumFractionDigits: 1});

function formatValue(value) {
  if (value === null || value === undefined) return '-';
  return Number.isInteger(value) ? integerFormat.format(value) : decimalFormat.format(value);
}

function formatText(value) {
  return value === null || value === undefined ? '-' : value;
}

function formatPercent(value) {
  return value === null || value === undefined ? '-' : value.toFixed(1);
}

function formatSigned(value) {
  if (value === null || value === undefined) return '-';
  return (value > 0 ? '+' : value < 0 ? '\u2212' : '\u00b1') + Math.abs(value).toFixed(1) + ' %';
}

function formatShort(value) {
  if (value >= 1e9) return (value / 1e9).toPrecision(2).replace(/\.0$/, '') + 'G';
  if (value >= 1e6) return (value / 1e6).toPrecision(2).replace(/\.0$/, '') + 'M';
  if (value >= 1e3) return (value / 1e3).toPrecision(2).replace(/\.0$/, '') + 'k';
  return String(Math.round(value * 100) / 100);
}

function formatP(value) {
  if (value === null || value === undefined) return '-';
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
  if (ticks.length < 3) return linearTicks(low, high, count - 2);  // a narrow range: plain steps
  if (ticks.length <= count) return ticks;
  const powers = ticks.filter((tick) => Math.log10(tick) % 1 === 0);
  return powers.length >= 2 ? powers : [ticks[0], ticks[ticks.length - 1]];
}

function linearTicks(low, high, count) {
  const raw = (high - low) / Math.max(count, 1);
  const power = Math.pow(10, Math.floor(Math.log10(raw || 1)));
  const step = [1, 2, 5, 10].map((f) => f * power).find((s) => s >= raw) || power;
  const ticks = [];
  for (let tick = Math.ceil(low / step) * step; tick <= high + 1e-9; tick += step) ticks.push(tick);
  return ticks;
}

// ---- the view in the URL ----

const state = {
  view: 'steps',
  graph: 0,
  sort: 'share',
  dir: 'desc',
  filter: '',
  step: null,
  all: false,
  row: null
};

function readState() {
  const params = new URLSearchParams(location.hash.slice(1));
  const number = (name) =>
      (params.has(name) && /^\d+$/.test(params.get(name)) ? Number(params.get(name)) : null);
  state.view = params.get('view') === 'comparison' && comparison ? 'comparison' : 'steps';
  state.graph = Math.min(number('graph') || 0, Math.max(run.graphs.length - 1, 0));
  state.sort = columns.some((c) => c.key === params.get('sort')) ? params.get('sort') : 'share';
  state.dir = params.get('dir') === 'asc' ? 'asc' : 'desc';
  state.filter = params.get('filter') || '';
  const graph = run.graphs[state.graph];
  state.step = graph && number('step') !== null && number('step') < graph.series.length ?
      number('step') :
      null;
  state.all = params.get('all') === '1';
  state.row = comparison && number('row') !== null && number('row') < comparison.rows.length ?
      number('row') :
      null;
}

function writeState() {
  const params = new URLSearchParams();
  if (state.view !== 'steps') params.set('view', state.view);
  params.set('graph', state.graph);
  params.set('sort', state.sort);
  params.set('dir', state.dir);
  if (state.filter) params.set('filter', state.filter);
  if (state.step !== null) params.set('step', state.step);
  if (state.all) params.set('all', '1');
  if (state.row !== null) params.set('row', state.row);
  history.replaceState(null, '', '#' + params.toString());
}

function update(changes) {
  Object.assign(state, changes);
  writeState();
  render();
}

// ---- navigation and the graph's header ----

function renderNav() {
  const nav = document.getElementById('views');
  const buttons = run.graphs.map(
      (graph, index) => el(
          'button',
          {type: 'button', 'aria-pressed': String(state.view === 'steps' && state.graph === index)},
          graph.name));
  buttons.forEach(
      (button, index) => button.addEventListener(
          'click', () => update({view: 'steps', graph: index, step: null, all: false})));
  if (comparison) {
    const button =
        el('button', {
          type: 'button',
          id: 'comparison-view',
          'aria-pressed': String(state.view === 'comparison')
        },
           'Comparison');
    button.addEventListener('click', () => update({view: 'comparison'}));
    buttons.push(button);
  }
  nav.replaceChildren(...buttons);
  nav.hidden = buttons.length < 2 && !comparison;
}

function figure(label, value) {
  return el('li', {}, el('span', {class: 'label'}, label), el('span', {class: 'value'}, value));
}

function renderGraph() {
  const section = document.getElementById('graph');
  const graph = run.graphs[state.graph];
  if (!graph) {
    section.replaceChildren(el('p', {class: 'note'}, 'The log has no executions.'));
    return;
  }
  const duration = graph.series[0].summary;
  const explained = duration.mean ? (graph.stepMeanSum / duration.mean) * 100 : null;
  const open = el('button', {type: 'button', id: 'duration-detail'}, 'Duration detail');
  open.addEventListener('click', () => openStep(0));
  section.replaceChildren(
      el('h2', {}, 'Graph ', el('q', {}, graph.name)),
      el('ul', {class: 'figures'},
         figure('executions counted', formatValue(graph.executions - graph.skipped)),
         figure('skipped', formatValue(graph.skipped)),
         figure('duration p50', formatValue(duration.p50)),
         figure('p90', formatValue(duration.p90)), figure('p99', formatValue(duration.p99)),
         figure('mean duration', formatValue(duration.mean)),
         figure('sum of step means', formatValue(graph.stepMeanSum)),
         figure('steps explain', explained === null ? '-' : formatPercent(explained) + ' %'),
         el('li', {}, open)));
}

// ---- the steps table ----

const columns = [
  {key: 'name', label: 'step', text: true, value: (s) => s.name, format: formatText},
  {key: 'parent', label: 'parent', text: true, value: (s) => s.parent, format: formatText},
  {key: 'occurrence', label: '#', value: (s) => s.occurrence},
  {key: 'share', label: 'share %', value: (s) => s.share, format: formatPercent},
  {key: 'count', label: 'count', value: (s) => s.summary.count},
  {key: 'mean', label: 'mean', value: (s) => s.summary.mean},
  {key: 'p50', label: 'p50', value: (s) => s.summary.p50},
  {key: 'p90', label: 'p90', value: (s) => s.summary.p90},
  {key: 'p99', label: 'p99', value: (s) => s.summary.p99},
  {key: 'max', label: 'max', value: (s) => s.summary.max},
  {key: 'first', label: 'first', value: (s) => s.summary.first},
];

// The span series of the graph that pass the filter, sorted; each with its index in the graph.
function tableRows(graph) {
  const filter = state.filter.toLowerCase();
  const column = columns.find((c) => c.key === state.sort);
  const sign = state.dir === 'asc' ? 1 : -1;
  return graph.series.map((series, index) => ({series, index}))
      .filter(({series}) => series.kind === 'span')
      .filter(
          ({series}) => !filter || series.name.toLowerCase().includes(filter) ||
              (series.parent || '').toLowerCase().includes(filter))
      .sort((a, b) => {
        const x = column.value(a.series);
        const y = column.value(b.series);
        if (x === y) return a.index - b.index;
        if (x === null || x === undefined) return 1;  // missing figures last either way
        if (y === null || y === undefined) return -1;
        return (typeof x === 'string' ? x.localeCompare(y) : x - y) * sign || a.index - b.index;
      });
}

// The box plot of a series on the shared axis: box p25 to p75, median, whiskers p1 to p99, max.
function drawBox(series, scale, width) {
  const picture = svg(
      'svg', {width: width, height: 18, viewBox: `0 0 ${width} 18`, class: 'boxplot', role: 'img'});
  if (!series.box) return picture;
  const [p1, p25, p50, p75, p99] = series.box;
  const x = (value) => scale(value).toFixed(1);
  picture.append(
      tooltip(
          `p1 ${formatValue(p1)}, p25 ${formatValue(p25)}, p50 ${formatValue(p50)}, p75 ${
              formatValue(p75)}, ` +
          `p99 ${formatValue(p99)}, max ${formatValue(series.summary.max)}`),
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

function drawAxis(ticks, scale, width) {
  const picture =
      svg('svg', {width: width, height: 16, viewBox: `0 0 ${width} 16`, 'aria-hidden': 'true'});
  for (const tick of ticks)
    picture.append(
        svg('line', {class: 'axis', x1: scale(tick), x2: scale(tick), y1: 12, y2: 16}),
        svg('text', {x: scale(tick), y: 10, 'text-anchor': 'middle', text: formatShort(tick)}));
  return picture;
}

function openStep(index) {
  update({step: index});
  if (index !== null) document.getElementById('detail').scrollIntoView({block: 'nearest'});
}

let visibleRows = [];  // what the table shows, for the keys and the CSV

function renderTable() {
  const section = document.getElementById('table-section');
  const graph = run.graphs[state.graph];
  section.hidden = state.view !== 'steps' || !graph;
  if (section.hidden) return;
  const rows = tableRows(graph);
  const spans = graph.series.filter((s) => s.kind === 'span' && s.box);
  const low = spans.length ? Math.max(Math.min(...spans.map((s) => s.box[0])), 1) : 1;
  const high = Math.max(...spans.map((s) => s.summary.max), low + 1);
  const width = 240;
  const scale = logScale(low, high, 6, width - 6);
  visibleRows = state.all ? rows : rows.slice(0, topRows);

  const filter = el('input', {
    type: 'search',
    id: 'filter',
    placeholder: 'Filter steps by name',
    'aria-label': 'Filter steps by name',
    value: state.filter
  });
  filter.addEventListener('input', () => {
    state.filter = filter.value;
    writeState();
    renderTable();
    const again = document.getElementById('filter');
    again.focus();
    again.setSelectionRange(again.value.length, again.value.length);
  });
  const copy = el('button', {type: 'button', id: 'copy-csv'}, 'Copy table as CSV');
  const status =
      el('span', {class: 'status', id: 'status', role: 'status'},
         `${visibleRows.length} of ${graph.series.filter((s) => s.kind === 'span').length} steps`);
  copy.addEventListener('click', () => copyCsv(status));
  const toolbar = el('div', {class: 'toolbar'}, filter, copy, status);
  if (rows.length > topRows) {
    const more =
        el('button', {type: 'button', id: 'show-all'},
           state.all ? `Show the top ${topRows}` : `Show all ${rows.length}`);
    more.addEventListener('click', () => update({all: !state.all}));
    toolbar.append(more);
  }

  const header =
      el('tr', {}, columns.map((column) => {
        const button = el('button', {type: 'button'}, column.label);
        button.addEventListener(
            'click', () => update({
                       sort: column.key,
                       dir: state.sort === column.key && state.dir === 'desc' ? 'asc' :
                           state.sort === column.key                          ? 'desc' :
                           column.text                                        ? 'asc' :
                                                                                'desc'
                     }));
        return el(
            'th', {
              class: column.text ? 'text' : null,
              'data-key': column.key,
              'aria-sort': state.sort === column.key ?
                  (state.dir === 'asc' ? 'ascending' : 'descending') :
                  null
            },
            button);
      }),
         el('th', {class: 'picture'}, el('span', {}, 'spans, log axis'),
            drawAxis(logTicks(low, high, 6), scale, width)));

  const body = el('tbody', {}, visibleRows.map(({series, index}) => {
    const row =
        el('tr', {
          tabindex: '0',
          'data-index': String(index),
          class: index === state.step ? 'selected' : null
        },
           columns.map(
               (column) =>
                   el('td', {class: column.text ? 'text' : null},
                      (column.format || formatValue)(column.value(series)))),
           el('td', {class: 'picture'}, drawBox(series, scale, width)));
    row.addEventListener('click', () => openStep(index === state.step ? null : index));
    row.addEventListener('keydown', (event) => {
      if (event.key === 'Enter' || event.key === ' ') {
        event.preventDefault();
        openStep(index);
      }
    });
    return row;
  }));
  const table = el('table', {id: 'steps'}, el('thead', {}, header), body);
  const children = [toolbar, table];
  if (!rows.length)
    children.push(
        el('p', {class: 'note'},
           graph.series.some((s) => s.kind === 'span') ?
               'No step matches the filter.' :
               'The executions of this graph have no steps.'));
  section.replaceChildren(...children);
}

function csvField(text) {
  const value = text === null || text === undefined ? '' : String(text);
  return /[",\r\n]/.test(value) ? '"' + value.replace(/"/g, '""') + '"' : value;
}

function copyCsv(status) {
  const lines = [columns.map((c) => c.key).join(',')];
  for (const {series} of visibleRows)
    lines.push(columns.map((c) => csvField(c.value(series))).join(','));
  const text = lines.join('\n') + '\n';
  const done = () => (status.textContent = `Copied ${visibleRows.length} rows as CSV`);
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

// ---- a step's detail ----

const plot = {
  width: 560,
  height: 230,
  left: 56,
  right: 16,
  top: 14,
  bottom: 36
};

function frame(label, xLabel, yLabel) {
  const picture =
      svg('svg', {
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
  return picture;
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

function verticalMark(picture, x, label) {
  picture.append(
      svg('line', {class: 'mark', x1: x, x2: x, y1: plot.top, y2: plot.height - plot.bottom}),
      svg('text', {class: 'label', x: x + 3, y: plot.top + 8, text: label}));
}

// Bars of counts on the histogram's bins, equal on a log axis or whole-number bins on a linear
// one; an overlay adds a second series as an outline on the same bins.
function drawHistogram(histogram, label, marks, overlay) {
  const log = histogram.scale === 'log';
  const picture = frame(label, log ? 'value (log axis)' : 'value', 'executions');
  const bins = histogram.counts.length;
  const low = log ? Math.max(histogram.low, 1) : histogram.low;
  const high = log ? histogram.high : histogram.low + bins * histogram.width;
  const from = plot.left + 4;
  const to = plot.width - plot.right - 4;
  const x = log ? logScale(low, high, from, to) : linearScale(low, high, from, to);
  const at = log ? x : (value) => x(value + 0.5);  // a whole number's cell has its middle at +0.5
  const most = Math.max(...histogram.counts, ...(overlay ? overlay.counts : []), 1);
  const y = linearScale(0, most, plot.height - plot.bottom, plot.top + 10);
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
  for (const [value, name] of marks)
    if (value !== null) verticalMark(picture, at(value), name);
  return picture;
}

// Each kept point against its position in execution order; the skipped ones grey behind the
// cut, the cold first execution ringed.
function drawExecutions(series) {
  const points = series.points;
  const picture = frame('values in execution order', 'value number, in execution order', 'value');
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
  points.value.forEach((value, i) => {
    const index = points.index ? points.index[i] : i;
    dots.append(svg('circle', {
      class: index < points.skipped ? 'point skipped' : 'point',
      cx: x(index).toFixed(1),
      cy: y(value).toFixed(1),
      r: 1.6
    }));
  });
  picture.append(dots);
  if (points.skipped) {
    const cut = x(points.skipped - 0.5);
    picture.append(
        svg('line', {class: 'cut', x1: cut, x2: cut, y1: plot.top, y2: plot.height - plot.bottom}),
        svg('text', {
          class: 'label',
          x: cut + 4,
          y: plot.top + 10,
          text: `--skip-first ${data.skipFirst}`
        }));
  }
  if (series.summary.first !== null && (!points.index || points.index[0] === 0)) {
    const cx = x(0);
    const cy = y(series.summary.first);
    picture.append(
        svg('circle', {class: 'first', cx: cx, cy: cy, r: 5},
            tooltip(`first execution: ${formatValue(series.summary.first)}`)),
        svg('text',
            {class: 'label', x: cx + 8, y: Math.max(cy - 6, plot.top + 8), text: 'first (cold)'}));
  }
  return picture;
}

function seriesTitle(series) {
  const where = series.parent !== null ? ` under ${series.parent}` : '';
  const occurrence = series.occurrence ? `, occurrence ${series.occurrence}` : '';
  return `${series.name} (${series.kind}${where}${occurrence})`;
}

function renderDetail() {
  const section = document.getElementById('detail');
  const graph = run.graphs[state.graph];
  const series = graph && state.step !== null ? graph.series[state.step] : null;
  section.hidden = state.view !== 'steps' || !series;
  if (section.hidden) return;
  const close = el('button', {type: 'button', id: 'close-detail'}, 'Close');
  close.addEventListener('click', () => update({step: null}));
  const s = series.summary;
  const thinned = series.points.index ?
      ` (${
          formatValue(
              series.points.value.length)} of them drawn: the smallest and largest of equal runs)` :
      '';
  section.replaceChildren(
      el('header', {}, el('h2', {}, seriesTitle(series)), close),
      el('ul', {class: 'figures'},
         ['count', 'mean', 'stddev', 'min', 'p50', 'p90', 'p99', 'max', 'first'].map(
             (key) => figure(key, formatValue(s[key])))),
      s.count === 0 ?
          el('p', {class: 'note'}, 'No counted execution has this series.') :
          el('div', {class: 'pictures'},
             el('figure', {id: 'histogram'},
                drawHistogram(series.histogram, 'histogram', [[s.p50, 'p50'], [s.p99, 'p99']]),
                el('figcaption', {},
                   `Histogram of the ${formatValue(s.count)} counted values in ${
                       series.histogram.counts.length} bins of equal width` +
                       (series.histogram.scale === 'log' ?
                            ' on a log axis.' :
                            ` (${formatValue(series.histogram.width)} each).`))),
             el('figure', {id: 'executions'}, drawExecutions(series),
                el('figcaption', {},
                   `All ${formatValue(series.points.values)} values in execution order${thinned}.` +
                       (series.points.skipped ? ' Grey: skipped executions.' : '')))));
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

// One row's change as a dot with its interval against the shaded threshold band.
function drawForest(row, scale, width, threshold) {
  const picture =
      svg('svg',
          {width: width, height: 18, viewBox: `0 0 ${width} 18`, role: 'img', class: row.verdict});
  picture.append(
      svg('rect', {
        class: 'band',
        x: scale(-threshold),
        width: scale(threshold) - scale(-threshold),
        y: 0,
        height: 18
      }),
      svg('line', {class: 'zero', x1: scale(0), x2: scale(0), y1: 0, y2: 18}));
  if (row.changePercent === null) return picture;
  const clamp = (value) => Math.min(Math.max(scale(value), 1), width - 1);
  const g = svg('g', {class: row.verdict}, tooltip(formatChange(row.changePercent, row.interval)));
  if (row.interval)
    g.append(svg(
        'line',
        {class: 'interval', x1: clamp(row.interval[0]), x2: clamp(row.interval[1]), y1: 9, y2: 9}));
  g.append(svg('circle', {class: 'estimate', cx: clamp(row.changePercent), cy: 9, r: 3.5}));
  picture.append(g);
  return picture;
}

function formatChange(percent, interval) {
  if (percent === null || percent === undefined) return '-';
  const range = interval ?
      ` [${formatSigned(interval[0]).replace(' %', '')} to ${formatSigned(interval[1])}]` :
      '';
  return formatSigned(percent) + range;
}

const verdictOrder = {
  slower: 0,
  faster: 1,
  unsure: 2
};

function renderComparison() {
  const section = document.getElementById('comparison');
  section.hidden = state.view !== 'comparison';
  if (section.hidden) return;
  const totals = comparison.totals;
  const threshold = comparison.threshold;
  const ends = comparison.rows.flatMap(
      (r) =>
          (r.interval                   ? r.interval :
               r.changePercent !== null ? [r.changePercent] :
                                          []));
  const reach = Math.min(Math.max(threshold * 2, ...ends.map(Math.abs)) * 1.1, 400);
  const width = 260;
  const scale = linearScale(-reach, reach, 4, width - 4);
  const ticks = linearTicks(-reach, reach, 4).map((t) => Math.round(t * 10) / 10);
  const axis =
      svg('svg', {width: width, height: 16, viewBox: `0 0 ${width} 16`, 'aria-hidden': 'true'},
          ticks.map(
              (t) =>
                  [svg('line', {class: 'axis', x1: scale(t), x2: scale(t), y1: 12, y2: 16}),
                   svg('text', {
                     x: scale(t),
                     y: 10,
                     'text-anchor': 'middle',
                     text: (t > 0 ? '+' : '') + t + '%'
                   })]));
  const shifts = comparison.graphs.map(
      (g) => figure(
          `run-wide shift of ${g.name}`,
          g.runShift ? formatChange(g.runShift.changePercent, g.runShift.interval) : '-'));
  const header =
      el('tr', {},
         ['verdict', 'graph', 'series', 'name', 'parent'].map((h) => el('th', {class: 'text'}, h)),
         ['base p50', 'new p50', 'change', 'p adjusted'].map((h) => el('th', {}, h)),
         el('th', {class: 'picture'}, el('span', {}, `change, band \u00b1${threshold} %`), axis));
  const ordered =
      comparison.rows.map((row, index) => ({row, index}))
          .sort(
              (a, b) => (verdictOrder[a.row.verdict] ?? 3) - (verdictOrder[b.row.verdict] ?? 3) ||
                  a.index - b.index);
  const body = el('tbody', {}, ordered.map(({row, index}) => {
    const verdict =
        el('td', {
          class: 'text verdict ' + row.verdict,
          title: row.needed !== null ?
              `about ${formatValue(row.needed)} executions per run would tell` :
              null
        },
           verdictSigns[row.verdict] || row.verdict);
    const tr =
        el('tr', {
          tabindex: '0',
          'data-index': String(index),
          class: index === state.row ? 'selected' : null
        },
           verdict, el('td', {class: 'text'}, row.graph), el('td', {class: 'text'}, row.series),
           el('td', {class: 'text'}, row.name),
           el('td', {class: 'text'}, row.parent === null ? '-' : row.parent),
           el('td', {}, formatValue(row.base.p50)), el('td', {}, formatValue(row.new.p50)),
           el('td', {}, formatSigned(row.changePercent)), el('td', {}, formatP(row.pAdjusted)),
           el('td', {class: 'picture'}, drawForest(row, scale, width, threshold)));
    tr.addEventListener('click', () => openRow(index === state.row ? null : index));
    tr.addEventListener('keydown', (event) => {
      if (event.key === 'Enter' || event.key === ' ') {
        event.preventDefault();
        openRow(index);
      }
    });
    return tr;
  }));
  const children = [
    el('h2', {}, 'Comparison'),
    el('ul', {class: 'figures'},
       ['slower', 'faster', 'same', 'unsure', 'added', 'removed'].map(
           (v) => figure(verdictSigns[v], formatValue(totals[v]))),
       shifts),
    el('p', {class: 'note'},
       `Slower or faster: the Holm-adjusted p-value is below ${
           comparison.alpha} and the change leaves the \u00b1${threshold} % band` +
           (comparison.relative ? ', net of its graph\u2019s run-wide shift' : '') +
           `. Same: the whole ${
               Math.round(
                   (1 - 2 * comparison.alpha) *
                   100)} % interval lies within the band. Unsure: neither. ` +
           'Each dot is the change of a series\u2019 values (the median of all differences, in percent of the base median), its line the interval. Click a row to overlay both runs\u2019 distributions.'),
    el('table', {id: 'comparison-table'}, el('thead', {}, header), body)
  ];
  const row = state.row !== null ? comparison.rows[state.row] : null;
  const overlay = row ? data.overlays[state.row] : null;
  if (row) {
    const parts =
        [el('h3', {},
            `${verdictSigns[row.verdict]}: ${row.name} (${row.series} of ${row.graph}), ${
                formatChange(row.changePercent, row.interval)}`)];
    if (overlay) {
      const picture = drawHistogram(
          overlay.new, 'base and new distributions',
          [[row.base.p50, 'base p50'], [row.new.p50, 'new p50']], overlay.base);
      parts.push(
          el('figure', {}, picture,
             el('figcaption', {}, el('span', {class: 'swatch base'}), ' base run (outline)  ',
                el('span', {class: 'swatch new'}), ' new run (filled), on the same bins')));
    } else {
      parts.push(el('p', {class: 'note'}, 'Only one run has values of this series.'));
    }
    children.push(el('div', {class: 'overlay', id: 'overlay'}, parts));
  }
  section.replaceChildren(...children);
}

function openRow(index) {
  update({row: index});
  if (index !== null) document.getElementById('overlay').scrollIntoView({block: 'nearest'});
}

// ---- keys and start ----

function render() {
  renderNav();
  document.getElementById('graph').hidden = state.view !== 'steps';
  renderGraph();
  renderTable();
  renderDetail();
  renderComparison();
}

function moveSelection(step) {
  const rows = [...document.querySelectorAll(
      state.view === 'steps' ? '#steps tbody tr' : '#comparison-table tbody tr')];
  if (!rows.length) return;
  const at = rows.indexOf(document.activeElement);
  rows[Math.min(Math.max(at + step, 0), rows.length - 1)].focus();
}

document.addEventListener('keydown', (event) => {
  if (event.target instanceof HTMLInputElement) {
    if (event.key === 'Escape') event.target.blur();
    return;
  }
  if (event.key === '/' && state.view === 'steps') {
    event.preventDefault();
    document.getElementById('filter').focus();
  } else if (event.key === 'Escape') {
    update(state.view === 'steps' ? {step: null} : {row: null});
  } else if (event.key === 'j') {
    moveSelection(1);
  } else if (event.key === 'k') {
    moveSelection(-1);
  }
});
window.addEventListener('hashchange', () => {
  readState();
  render();
});

if (data.schema !== supportedSchema) {
  document.getElementById('graph').replaceChildren(
      el('p', {class: 'note'}, `This page cannot draw data of schema ${data.schema}.`));
  return;
}
readState();
if (!location.hash && comparison && comparison.totals.slower) state.view = 'comparison';
render();
})();
