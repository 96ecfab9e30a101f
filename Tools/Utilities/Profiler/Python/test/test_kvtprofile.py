"""The module's frames against the log tool's golden outputs and JSON, its errors, and its
release of the GIL while it reads."""

import json
import os
import subprocess
import threading
import time

import pandas
import pytest

import kvtprofile
from conftest import golden_dir, golden_logs

LOGS = golden_logs()
IDS = [name for name, _ in LOGS]


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
def test_executions_frame_is_the_golden_csv(case, name):
    log = next(path for key, path in LOGS if key == f"{case.name}/{name}")
    frame = kvtprofile.executions(log)
    assert frame.attrs["unit"] == "us"
    frame.insert(0, "log", f"<logs>/{name}.log")
    assert frame.to_csv(index=False, lineterminator="\n") == (case / "executions.out").read_text()


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


def plain(value):
    """A frame's cell as JSON holds it: missing as None, decimals as printed."""
    if pandas.isna(value):
        return None
    return round(float(value), 3) if isinstance(value, float) else value


@pytest.mark.parametrize("log", [path for _, path in LOGS], ids=IDS)
def test_stats_frame_agrees_with_the_tools_json(log, log_tool):
    printed = subprocess.run([log_tool, "stats", str(log), "--format", "json", "--skip-first", "1"],
                             capture_output=True, check=True).stdout.decode(errors="surrogateescape")
    frame = kvtprofile.stats(log, skip_first=1)
    rows = [{column: plain(value) for column, value in row.items()}
            for row in frame.to_dict("records")]
    assert rows == expected_stats_rows(json.loads(printed))


@pytest.fixture
def refused(tmp_path):
    """(what, path, the reader's message) of logs the reader refuses."""
    good = next(path for name, path in LOGS if name == "step-keys/input").read_bytes()
    cut = tmp_path / "cut.log"
    cut.write_bytes(good[:len(good) // 2])
    return [("a log cut in its chunk", cut, "Corrupted flatbuffer binary stream"),
            ("a folder", tmp_path, f"Invalid or nonexistent file: {tmp_path}")]


def test_refused_logs_raise_log_error_with_the_readers_message(refused):
    for what, path, message in refused:
        for read in (kvtprofile.executions, kvtprofile.stats, kvtprofile.summary):
            with pytest.raises(kvtprofile.LogError) as raised:
                read(path)
            assert str(raised.value) == message, (what, read.__name__)


def test_bad_arguments_raise_python_errors(tmp_path):
    log = LOGS[0][1]
    cases = [(FileNotFoundError, lambda: kvtprofile.executions(tmp_path / "missing.log")),
             (ValueError, lambda: kvtprofile.executions(log, visibility=128)),
             (ValueError, lambda: kvtprofile.stats(log, skip_first=-1)),
             (TypeError, lambda: kvtprofile.executions(log, 0)),
             (TypeError, lambda: kvtprofile.executions(3))]
    for error, call in cases:
        with pytest.raises(error):
            call()


def test_summary_and_trace_are_the_viewers(tmp_path):
    log = os.environ["KVT_EXAMPLE_LOG"]
    assert "Execute Stats" in kvtprofile.summary(log)
    printed = kvtprofile.trace(log, tmp_path / "trace.json")
    assert (tmp_path / "trace.json").read_text().startswith("{")
    assert "Execute Stats" in printed


def test_another_thread_runs_while_a_log_is_read(tmp_path, log_tool):
    # Each round of the other thread takes the GIL anew; a read that held it would allow only
    # the rounds at its start and end.
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
    frame = kvtprofile.executions(log)
    reading.clear()
    done.set()
    counter.join()
    assert len(frame) > 0
    assert len(rounds) >= 10
