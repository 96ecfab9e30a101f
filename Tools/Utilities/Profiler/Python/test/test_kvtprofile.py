"""The module's frames against the log tool's golden outputs and JSON and against each other,
its errors, and its release of the GIL while it reads."""

import csv
import io
import json
import math
import os
import re
import subprocess
import threading
import time

import pandas
import pytest

import kvtprofile
from conftest import LOG_DIR, golden_dir

STEP_KEYS = LOG_DIR / "step-keys" / "input.log"
EDGES = LOG_DIR / "compare-edges"
KEY = ["graph", "series", "name", "parent", "occurrence"]
CSV_COLUMNS = ["graph", "execution", "series", "parent", "name", "occurrence", "value"]
INT64_MAX = 2**63 - 1


def golden_executions_cases():
    """(case folder, log name) of each golden case whose commands print `executions {NAME}`."""
    cases = []
    for commands in sorted(golden_dir().glob("*/commands")):
        for line in commands.read_text().splitlines():
            output, _, args = line.partition(":")
            words = args.split()
            if output == "executions" and len(words) == 2 and words[0] == "executions":
                cases.append((commands.parent, words[1].strip("{}")))
    return cases


@pytest.mark.parametrize("case, name", golden_executions_cases(),
                         ids=lambda value: getattr(value, "name", value))
def test_executions_frame_is_the_golden_csv(case, name, log_tool, tmp_path):
    log = LOG_DIR / case.name / f"{name}.log"
    frame = kvtprofile.executions(log)[CSV_COLUMNS]
    frame.insert(0, "log", f"<logs>/{name}.log")
    expected = (case / "executions.out").read_text(errors="surrogateescape")
    assert frame.to_csv(index=False, lineterminator="\n") == expected
    # The command's file is its standard output.
    subprocess.run([log_tool, "executions", str(log), "-o", str(tmp_path / "rows.csv")], check=True)
    written = (tmp_path / "rows.csv").read_text(errors="surrogateescape")
    assert written.replace(str(log), f"<logs>/{name}.log") == expected


def expected_stats_rows(report):
    """The rows of `stats --format json` in the order of its CSV: graph by graph, duration,
    queueWait, back-end records, then each step's span and wait."""
    rows = []
    for graph in report["graphs"]:
        def row(series, name, figures, parent=None, occurrence=None, share=None):
            rows.append(dict(graph=graph["name"], series=series, name=name, parent=parent,
                             occurrence=occurrence, share=share, **figures))
        row("duration", "duration", graph["duration"])
        if graph["queueWait"] is not None:
            row("queueWait", "queueWait", graph["queueWait"])
        for record in graph["backend"]:
            row("backend", record["name"], record["value"], occurrence=record["occurrence"])
        for step in graph["steps"]:
            key = dict(parent=step["parent"], occurrence=step["occurrence"])
            row("span", step["name"], step["span"], share=step["share"], **key)
            if step["wait"] is not None:
                row("wait", step["name"], step["wait"], **key)
    return rows


def snake(name):
    """JSON's camelCase key as the frame's snake_case column: pValue as p_value."""
    return re.sub("([A-Z])", lambda upper: "_" + upper.group(1).lower(), name)


def flat(figures, prefix=""):
    """JSON's nested values as the frame's flat columns: base.count as base_count, interval as
    interval_low and interval_high, every key in snake_case."""
    columns = {}
    for key, value in figures.items():
        if isinstance(value, dict):
            columns.update(flat(value, f"{prefix}{key}_"))
        elif key == "interval":
            low, high = value if value else (None, None)
            columns.update({f"{prefix}interval_low": low, f"{prefix}interval_high": high})
        elif key == "needed" and value is None:
            columns.update({f"{prefix}needed_base": None, f"{prefix}needed_new": None})
        else:
            columns[prefix + snake(key)] = value
    return columns


def holds_oversized(document):
    """Whether some whole number in a JSON document exceeds what int64 holds."""
    if isinstance(document, dict):
        return any(holds_oversized(value) for value in document.values())
    if isinstance(document, list):
        return any(holds_oversized(value) for value in document)
    return isinstance(document, int) and document > INT64_MAX


def agree(value, printed):
    """A frame's value against JSON's, printed to a few digits; missing is null."""
    if pandas.isna(value):
        return printed is None
    if isinstance(printed, float) or isinstance(value, float):
        return printed is not None and math.isclose(value, printed, rel_tol=2e-3, abs_tol=2e-3)
    return value == printed


def golden_json_reports():
    """(case, expected file, arguments) of every golden `stats` or `compare` with --format json
    on the case's logs ({NAME}; logs the case makes as it runs are left to the log tool)."""
    reports = []
    for commands in sorted(golden_dir().glob("*/commands")):
        for line in commands.read_text().splitlines():
            output, _, args = line.partition(":")
            words = args.split()
            on_case_logs = all(word.startswith("{") for word in words[1:2])
            if (words[:1] in (["stats"], ["compare"]) and "json" in words
                    and "--graph" not in words and on_case_logs):
                reports.append(pytest.param(commands.parent, output, words,
                                            id=f"{commands.parent.name}/{output}"))
    return reports


OPTIONS = {"--skip-first": ("skip_first", int), "--alpha": ("alpha", float),
           "--threshold": ("threshold", float), "--min-change": ("min_change", float)}


@pytest.mark.parametrize("case, output, words", golden_json_reports())
def test_frames_agree_with_the_tools_json(case, output, words):
    logs = [LOG_DIR / case.name / f"{word.strip('{}')}.log" for word in words if word[0] == "{"]
    options = {name: read(words[words.index(flag) + 1])
               for flag, (name, read) in OPTIONS.items() if flag in words}
    if "--relative" in words:
        options["relative"] = True
    report = json.loads((case / f"{output}.out").read_text())
    read = kvtprofile.stats if words[0] == "stats" else kvtprofile.compare
    if holds_oversized(report):
        # A figure beyond int64 raises instead of wrapping into a negative number.
        with pytest.raises(OverflowError, match="exceeds 2\\^63 - 1"):
            read(*logs, **options)
        return
    if words[0] == "stats":
        frame = kvtprofile.stats(*logs, **options)
        expected = expected_stats_rows(report)
    else:
        frame = kvtprofile.compare(*logs, **options)
        expected = [flat(row) for row in report["rows"]]
        assert frame.attrs["totals"] == report["totals"]
        assert [graph["name"] for graph in frame.attrs["graphs"]] == [
            graph["name"] for graph in report["graphs"]]
        for graph, printed in zip(frame.attrs["graphs"], report["graphs"]):
            shift = flat(printed["runShift"] or {"shift": None})
            assert all(agree(graph[key], value) for key, value in shift.items()), (graph, shift)
    rows = frame.to_dict("records")
    assert len(rows) == len(expected)
    for row, printed in zip(rows, expected):
        assert set(row) == set(printed)
        assert all(agree(row[column], printed[column]) for column in row), (row, printed)


HISTORY_OPTIONS = {**OPTIONS, "--order": ("order", str), "--figure": ("figure", str),
                   "--min-runs": ("min_runs", int), "--gate": ("gate", int)}


def history_call(case, words):
    """The runs and options of a golden `history` command: {NAME} a log the case builds, [FILE] a
    file of its folder, @[FILE] a list."""
    runs = []
    for word in words[1:]:
        if word.startswith("{"):
            runs.append(LOG_DIR / case.name / f"{word.strip('{}')}.log")
        elif word.startswith("@["):
            runs.append("@" + str(case / word[2:-1]))
        elif word.startswith("["):
            runs.append(case / word[1:-1])
    options = {name: read(words[words.index(flag) + 1])
               for flag, (name, read) in HISTORY_OPTIONS.items() if flag in words}
    if "--relative" in words:
        options["relative"] = True
    return runs, options


def golden_history_reports():
    """(case, expected file, arguments) of every golden `history` with --format json or csv."""
    reports = []
    for commands in sorted(golden_dir().glob("history-*/commands")):
        for line in commands.read_text().splitlines():
            output, _, args = line.partition(":")
            words = args.split()
            if words[:1] == ["history"] and ("json" in words or "csv" in words):
                reports.append(pytest.param(commands.parent, output, words,
                                            id=f"{commands.parent.name}/{output}"))
    return reports


@pytest.mark.parametrize("case, output, words", golden_history_reports())
def test_history_frames_agree_with_the_tools_json_and_csv(case, output, words):
    runs, options = history_call(case, words)
    changes, values = kvtprofile.history(runs, **options)

    def placeholders(source):
        return source.replace(str(LOG_DIR / case.name), "<logs>").replace(str(case), "<case>")

    def key_and_run(row):
        return {**missing_as_none({column: row[column] for column in KEY}), "run": row["run"],
                "source": placeholders(row["source"])}

    printed = (case / f"{output}.out").read_text()
    if "csv" in words:
        lines = list(csv.DictReader(io.StringIO(printed)))
        rows = values.to_dict("records")
        assert len(rows) == len(lines)
        for row, line in zip(rows, lines):
            expected = {column: line[column] or None for column in KEY + ["source"]}
            expected.update(run=int(line["run"]),
                            occurrence=int(line["occurrence"]) if line["occurrence"] else None)
            assert key_and_run(row) == expected
            assert row["value"] == float(line["value"])
        return
    report = json.loads(printed)
    sources = [run["source"] for run in report["runs"]]
    expected_changes, expected_values = [], []
    for series in report["series"]:
        key = {column: series[column] for column in KEY}
        for change in series["changes"]:
            expected_changes.append({**key, "source": sources[change["run"]], **flat(change)})
    for run, source in enumerate(sources):
        for series in report["series"]:
            if series["values"][run] is not None:
                expected_values.append({**{column: series[column] for column in KEY},
                                        "run": run, "source": source,
                                        "value": series["values"][run]})
    for frame, expected in [(changes, expected_changes), (values, expected_values)]:
        rows = [{**row, **key_and_run(row)} for row in frame.to_dict("records")]
        assert len(rows) == len(expected)
        for row, printed_row in zip(rows, expected):
            assert set(row) == set(printed_row)
            assert all(agree(row[column], printed_row[column]) for column in row), (
                row, printed_row)
    attrs = changes.attrs
    assert attrs == values.attrs
    assert attrs["totals"] == {snake(name): count for name, count in report["totals"].items()}
    assert [{**run, "source": placeholders(run["source"])} for run in attrs["runs"]] == \
        report["runs"]
    assert {name: attrs[snake(name)] for name in ["figure", "skipFirst", "minRuns", "relative",
                                                  "gate", "tooFewRuns"]} == {
        name: report[name] for name in ["figure", "skipFirst", "minRuns", "relative", "gate",
                                        "tooFewRuns"]}
    assert [graph["graph"] for graph in attrs["graphs"]] == [
        graph["graph"] for graph in report["graphs"]]
    for graph, printed_graph in zip(attrs["graphs"], report["graphs"]):
        assert all(agree(factor, printed) for factor, printed in
                   zip(graph["run_factor"], printed_graph["runFactor"], strict=True))
        assert len(graph["run_wide"]) == len(printed_graph["runWide"])
        for change, printed_change in zip(graph["run_wide"], printed_graph["runWide"]):
            assert all(agree(change[name], value) for name, value in flat(printed_change).items())


def test_too_few_runs_are_said_and_give_values_but_no_change():
    # 5 runs, a change needs 3 on each side: as the golden table history-step/too-few-runs says.
    runs = sorted((LOG_DIR / "history-step").glob("run*.log"))[:5]
    changes, values = kvtprofile.history(runs)
    assert changes.attrs["too_few_runs"] and len(changes) == 0
    assert sorted(values.run.unique()) == [0, 1, 2, 3, 4]
    assert not kvtprofile.history(runs, min_runs=2).changes.attrs["too_few_runs"]


def golden_refused_histories():
    """(case, runs, options, the LogError's message) of every golden `history` that exits 1 on a
    run or list of its folder; the tool's message is "cannot read the run PATH: WHY" or "the run
    PATH WHY", the module's "PATH: WHY" and "PATH WHY"."""
    refused = []
    for commands in sorted(golden_dir().glob("history-*/commands")):
        case = commands.parent
        printed = (case / "results").read_text().split("\n")
        for line in commands.read_text().splitlines():
            output, _, args = line.partition(":")
            words = args.split()
            message = printed[printed.index(f"{output}: exit 1") + 1] if (
                f"{output}: exit 1" in printed) else ""
            found = re.fullmatch("kvt-profile-log history: (cannot read the (run|list) |the run )"
                                 "(<case>/.*)", message)
            if found:
                runs, options = history_call(case, words)
                refused.append(pytest.param(runs, options,
                                            found.group(3).replace("<case>", str(case)),
                                            id=f"{case.name}/{output}"))
    return refused


@pytest.mark.parametrize("runs, options, message", golden_refused_histories())
def test_refused_histories_raise_log_error_naming_the_file(runs, options, message):
    with pytest.raises(kvtprofile.LogError) as raised:
        kvtprofile.history(runs, **options)
    assert str(raised.value) == message


@pytest.fixture
def refused(tmp_path):
    """(what, path, the precise line, the reader's message) of logs the reader refuses."""
    good = STEP_KEYS.read_bytes()
    cut = tmp_path / "cut.log"
    cut.write_bytes(good[:len(good) // 2])
    claimed = int.from_bytes(good[:4], "little")
    return [("a log cut in its chunk", cut,
             f"{cut}: chunk 0 at offset 0 is cut short: its size prefix says {claimed} bytes, "
             f"the file holds {len(good) // 2 - 4} more", "Corrupted flatbuffer binary stream"),
            ("a folder", tmp_path, f"{tmp_path} is a directory, not a log file",
             f"Invalid or nonexistent file: {tmp_path}")]


def test_refused_logs_raise_log_error_saying_where(refused):
    # The analysis names the file and what is wrong where, then the reader's own message; for
    # compare, which run. The reader's summary keeps the reader's message alone.
    for what, path, precise, message in refused:
        reads = [(kvtprofile.executions, precise), (kvtprofile.stats, precise),
                 (lambda log: kvtprofile.compare(STEP_KEYS, log), "new log " + precise),
                 (lambda log: kvtprofile.compare(log, STEP_KEYS), "base log " + precise)]
        for read, first in reads:
            with pytest.raises(kvtprofile.LogError) as raised:
                read(path)
            assert str(raised.value) == first + "\n" + message, (what, read)
        with pytest.raises(kvtprofile.LogError) as raised:
            kvtprofile.summary(path)
        assert str(raised.value) == message, what


def test_partial_reads_keep_the_whole_chunks_before_the_cut(log_tool, tmp_path):
    # Three chunks of one graph's executions (1, 2 and 2 of them); the cut falls in the third.
    documents = golden_dir() / "partial" / "documents"
    log = tmp_path / "run.log"
    subprocess.run([log_tool, "build", "--chunks", *(str(documents / f"{name}.json")
                    for name in ("first", "middle", "last")), "-o", str(log)], check=True)
    cut = tmp_path / "cut.log"
    cut.write_bytes(log.read_bytes()[:1000])
    dropped = {"chunks_read": 2, "bytes_read": 888,
               "reason": "chunk 2 at offset 888 is cut short: its size prefix says 528 bytes, "
                         "the file holds 108 more"}
    with pytest.raises(kvtprofile.LogError, match="^" + str(cut) + ": chunk 2 at offset 888"):
        kvtprofile.stats(cut)
    with pytest.warns(RuntimeWarning, match="read 2 whole chunks"):
        frame = kvtprofile.executions(cut, partial=True)
    assert frame.attrs["partial"] == dropped
    assert sorted(frame.execution.unique()) == [0, 1, 2]
    with pytest.warns(RuntimeWarning):
        stats = kvtprofile.stats(cut, partial=True)
    assert stats.attrs["partial"] == dropped and stats.attrs["executions"] == {"model": 3}
    with pytest.warns(RuntimeWarning):
        comparison = kvtprofile.compare(log, cut, partial=True)
    assert comparison.attrs["partial"] == {"base": None, "new": dropped}
    assert kvtprofile.stats(log, partial=True).attrs["partial"] is None


def test_bad_arguments_raise_errors_that_name_them(tmp_path):
    log = STEP_KEYS
    cases = [(FileNotFoundError, "", lambda: kvtprofile.executions(tmp_path / "missing.log")),
             (ValueError, "visibility must be from -128 to 127, not 128",
              lambda: kvtprofile.executions(log, visibility=128)),
             (ValueError, "skip_first must be 0 or more, not -1",
              lambda: kvtprofile.stats(log, skip_first=-1)),
             (ValueError, "alpha needs a probability above 0 and below 0.5, not 0.5",
              lambda: kvtprofile.compare(log, log, alpha=0.5)),
             (ValueError, "threshold needs a percentage of 0 or more, not -1.0",
              lambda: kvtprofile.compare(log, log, threshold=-1)),
             (ValueError, "min_change needs a number of units of 0 or more, not nan",
              lambda: kvtprofile.compare(log, log, min_change=math.nan)),
             (ValueError, "path holds no log", lambda: kvtprofile.executions([])),
             (ValueError, f"path names {log} twice", lambda: kvtprofile.stats([log, log])),
             (TypeError, "visibility takes an int, not str",
              lambda: kvtprofile.executions(log, visibility="1")),
             (TypeError, "skip_first takes an int, not float",
              lambda: kvtprofile.stats(log, skip_first=1.0)),
             (TypeError, "alpha takes a number (int or float), not str",
              lambda: kvtprofile.compare(log, log, alpha="0.1")),
             (TypeError, "relative takes True or False, not int",
              lambda: kvtprofile.compare(log, log, relative=1)),
             (TypeError, "new takes a path (str or os.PathLike), not NoneType",
              lambda: kvtprofile.compare(log, None)),
             (TypeError, "path takes a path (str or os.PathLike) or a list of paths, not int",
              lambda: kvtprofile.executions(3)),
             (TypeError, "path[1] takes a path (str or os.PathLike), not int",
              lambda: kvtprofile.stats([log, 3])),
             (TypeError, "output takes a path (str or os.PathLike), not int",
              lambda: kvtprofile.trace(log, 0)),
             (TypeError, "", lambda: kvtprofile.executions(log, 0)),
             (FileNotFoundError, "", lambda: kvtprofile.history([log, tmp_path / "missing"])),
             (ValueError, "figure must be p50, p90 or mean, not 'p99'",
              lambda: kvtprofile.history(log, figure="p99")),
             (ValueError, "min_runs must be from 1 to 4294967295, not 0",
              lambda: kvtprofile.history(log, min_runs=0)),
             (ValueError, "gate must be 0 or more, not -1",
              lambda: kvtprofile.history(log, gate=-1)),
             (ValueError, "alpha needs a probability above 0 and below 0.5, not 0.5",
              lambda: kvtprofile.history(log, alpha=0.5)),
             (ValueError, "runs holds no log", lambda: kvtprofile.history([])),
             (TypeError, "figure takes a str, not int", lambda: kvtprofile.history(log, figure=90)),
             (TypeError, "runs[1] takes a path (str or os.PathLike), not NoneType",
              lambda: kvtprofile.history([log, None]))]
    for error, message, call in cases:
        with pytest.raises(error) as raised:
            call()
        assert message in str(raised.value), (message, raised.value)


def test_values_beyond_int64_raise_naming_where_they_are():
    # compare-edges' graph huge spans within 100 of 2^64 - 1, its first value 2^64 - 101.
    base = EDGES / "base.log"
    where = "in {log}, graph huge, span Huge under execute, occurrence 0"
    cases = [(lambda: kvtprofile.executions(base),
              "the value 18446744073709551515 " + where.format(log=base) + ", execution 0"),
             (lambda: kvtprofile.stats([STEP_KEYS, base]),
              "the largest value 18446744073709551595 " + where.format(log=base)),
             (lambda: kvtprofile.compare(base, EDGES / "new.log"),
              "the median 18446744073709551549 " + where.format(log="base"))]
    for call, message in cases:
        with pytest.raises(OverflowError) as raised:
            call()
        assert message in str(raised.value), (message, raised.value)


def readable_golden_logs():
    """Every golden log the reader takes whose values fit int64, in a stable order."""
    logs = []
    for log in sorted(LOG_DIR.glob("*/*.log")):
        try:
            kvtprofile.stats(log)
        except (kvtprofile.LogError, OverflowError):
            continue
        logs.append(log)
    return logs


def nearest_rank(ordered, percent):
    return ordered[max(1, (percent * len(ordered) + 99) // 100) - 1]


def figures_of(values, first):
    """The figures of stats as the statistics compute them: sums in ascending order."""
    ordered = sorted(values)
    total = 0.0
    for value in ordered:
        total += float(value)
    mean = total / len(ordered)
    squares = 0.0
    for value in ordered:
        squares += (float(value) - mean) ** 2
    return dict(count=len(ordered), mean=mean, stddev=math.sqrt(squares / len(ordered)),
                min=ordered[0], p50=nearest_rank(ordered, 50), p90=nearest_rank(ordered, 90),
                p99=nearest_rank(ordered, 99), max=ordered[-1], first=first)


def missing_as_none(row):
    return {key: None if pandas.isna(value) else value for key, value in row.items()}


@pytest.mark.parametrize("skip_first", [0, 1])
def test_grouping_executions_by_series_gives_every_stats_figure(skip_first):
    logs = readable_golden_logs()
    rows = kvtprofile.executions(logs, skip_first=skip_first)
    stats = kvtprofile.stats(logs, skip_first=skip_first)
    # Grouped by hand: pandas' groupby drops missing categorical keys whatever dropna says.
    values, firsts = {}, {}
    for row in rows.itertuples(index=False):
        key = tuple(None if pandas.isna(getattr(row, part)) else getattr(row, part)
                    for part in ["log"] + KEY)
        values.setdefault(key, []).append(int(row.value))
        if row.execution == 0:
            firsts[key] = int(row.value)
    groups = {key: figures_of(group, firsts.get(key)) for key, group in values.items()}
    span_means = {}
    for row in map(missing_as_none, stats.to_dict("records")):
        if row["series"] == "span" and row["count"]:
            graph = (row["log"], row["graph"])
            span_means.setdefault(graph, []).append(row["mean"])
    for row in map(missing_as_none, stats.to_dict("records")):
        key = tuple(row[column] for column in ["log"] + KEY)
        expected = groups.pop(key, None)
        if expected is None:
            assert row["count"] == 0, key  # every value skipped: no rows, no figures
            continue
        if skip_first:
            expected["first"] = row["first"]  # the skipped first execution has no rows
        assert {name: row[name] for name in expected} == expected, key
        if row["series"] == "span":
            total = 0.0
            for mean in span_means[(row["log"], row["graph"])]:
                total += mean
            assert row["share"] == row["mean"] / total * 100, key
    assert not groups, f"series in executions() but not in stats(): {list(groups)}"


def test_frames_share_their_key_columns_names_and_signed_numbers():
    base, new = LOG_DIR / "compare-200" / "base.log", LOG_DIR / "compare-200" / "new.log"
    both = kvtprofile.executions([new, base])
    frames = [both, kvtprofile.stats([new, base]), kvtprofile.compare(base, new)]
    history = kvtprofile.history(sorted((LOG_DIR / "history-step").glob("run*.log")))
    frames += list(history)
    for frame in frames:
        assert list(frame.columns[:5]) == KEY
        assert list(frame.series.cat.categories) == [
            "duration", "queueWait", "backend", "span", "wait"]
        assert all(re.fullmatch("[a-z0-9_]+", column) for column in frame.columns)
        assert all(re.fullmatch("[a-z_]+", name) for name in frame.attrs)
    for compared in [frames[2], history.changes]:
        assert compared.verdict.cat.ordered
        assert list(compared.verdict.cat.categories) == [
            "slower", "faster", "same", "unsure", "added", "removed"]
    assert all(re.fullmatch("[a-z_]+", name)
               for graph in compared.attrs["graphs"] for name in graph)
    # One frame of two logs: shared categories, and run-to-run deltas that keep their sign.
    assert list(both.log.cat.categories) == [str(new), str(base)]
    assert list(both.graph.cat.categories) == ["model"]
    fastest = both[both.series == "span"].groupby(["log", "name"], observed=True).value.min()
    assert fastest[str(base)]["Conv"] - fastest[str(new)]["Conv"] < 0
    assert (both.value - both.value.max()).max() == 0


def test_summary_and_trace_are_the_viewers(tmp_path):
    log = os.environ["KVT_EXAMPLE_LOG"]
    assert "Execute Stats" in kvtprofile.summary(log)
    printed = kvtprofile.trace(log, tmp_path / "trace.json")
    assert (tmp_path / "trace.json").read_text().startswith("{")
    assert "Execute Stats" in printed


def test_summaries_and_traces_on_threads_are_each_whole(tmp_path):
    # Each call prints to a stream of its own: texts read side by side neither mix nor go missing.
    log = os.environ["KVT_EXAMPLE_LOG"]
    expected_summary = kvtprofile.summary(log)
    expected_trace = kvtprofile.trace(log, tmp_path / "expected.json")
    results = {}

    def read(worker):
        for round in range(10):
            if (worker + round) % 2:
                results[worker, round] = kvtprofile.summary(log) == expected_summary
            else:
                output = tmp_path / f"trace-{worker}.json"
                results[worker, round] = kvtprofile.trace(log, output) == expected_trace

    workers = [threading.Thread(target=read, args=(worker,)) for worker in range(4)]
    for worker in workers:
        worker.start()
    for worker in workers:
        worker.join()
    assert len(results) == 40
    assert all(results.values())


def test_another_thread_runs_while_a_log_is_read(tmp_path, log_tool):
    # Each round of the other thread takes the GIL anew; a read that held it would allow only
    # the rounds at its start and end. Every execution is skipped, so the call is all reading.
    log = tmp_path / "big.log"
    subprocess.run([log_tool, "synth", "-o", str(log), "--graphs", "1", "--executions", "6000",
                    "--steps", "64"], check=True)
    reading = threading.Event()
    done = threading.Event()
    rounds = []

    def count():
        while not done.is_set():
            if reading.is_set():
                rounds.append(1)
            time.sleep(0.001)

    counter = threading.Thread(target=count)
    counter.start()
    reading.set()
    frame = kvtprofile.executions(log, skip_first=6000)
    reading.clear()
    done.set()
    counter.join()
    assert len(frame) == 0
    assert len(rounds) >= 10


def test_a_bad_thread_setting_stops_every_read_of_a_log(monkeypatch):
    monkeypatch.setenv("KVT_PROFILER_THREADS", "0")
    for call in (lambda: kvtprofile.executions(STEP_KEYS), lambda: kvtprofile.stats(STEP_KEYS),
                 lambda: kvtprofile.compare(STEP_KEYS, STEP_KEYS),
                 lambda: kvtprofile.history([STEP_KEYS, STEP_KEYS])):
        with pytest.raises(ValueError, match='KVT_PROFILER_THREADS must be a whole number from 1 '
                                             'to 256, not "0"'):
            call()
