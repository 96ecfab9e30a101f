"""Profiling logs as pandas data frames (stubs of the compiled module kvtprofile).

Every frame leads with the series' key: graph, series, name, parent, occurrence. Whole numbers
are int64 (Int64 where one may be missing); a value above 2^63 - 1 raises OverflowError."""

import os
from typing import Iterable, NamedTuple, Union

import pandas

_Path = Union[str, bytes, os.PathLike[str], os.PathLike[bytes]]
_Logs = Union[_Path, Iterable[_Path]]

class LogError(Exception):
    """The log was refused: the file and what is wrong where, then the reader's own messages."""

def executions(path: _Logs, *, visibility: int = 127, skip_first: int = 0,
               partial: bool = False) -> pandas.DataFrame:
    """Every execution's values, a row per value: graph, series, name, parent, occurrence,
    execution, value; with a list of logs, then log (a categorical shared by every log)."""

def stats(path: _Logs, *, skip_first: int = 0, visibility: int = 127,
          partial: bool = False) -> pandas.DataFrame:
    """Each series' figures, a row per series, as `kvt-profile-log stats` gives them; with a list
    of logs, then log."""

def compare(base: _Path, new: _Path, *, alpha: float = ..., threshold: float = ...,
            min_change: float = ..., relative: bool = ...,
            skip_first: int = 0, partial: bool = False) -> pandas.DataFrame:
    """Which series got slower or faster between two runs, a row per series, with the columns of
    `kvt-profile-log compare --format json` in snake_case (base_count, base_p50, new_count,
    new_p50, change_percent, interval_low, interval_high, p_value, p_adjusted, q_value flat);
    verdict an ordered categorical; graphs and totals in attrs. The defaults are the command's
    (help(kvtprofile.compare) shows them)."""

class History(NamedTuple):
    """The frames of a history of runs, with the same attrs (runs, graphs and their run-wide
    changes, totals, the options)."""
    changes: pandas.DataFrame
    """A row per change of a series: the key, run, source, before, after, change_percent,
    interval_low, interval_high, p_adjusted, q_value, verdict (an ordered categorical)."""
    values: pandas.DataFrame
    """A row per series and run with a value: the key, run, source, value."""

def history(runs: _Logs, *, order: str = "given", figure: str = "p50", skip_first: int = 0,
            alpha: float = ..., threshold: float = ..., min_change: float = ..., relative: bool = ...,
            min_runs: int = 3, gate: int = 5) -> History:
    """Which series changed, at which run, across runs given oldest first (logs, stats JSON
    documents, "@FILE" lists), as `kvt-profile-log history` finds them: the frame of changes and
    the frame of per-run values (the rows of `history --format csv`). alpha, threshold,
    min_change and relative are compare()'s."""

def summary(path: _Path) -> str:
    """The reader's statistics summary of the log, as the viewer prints it."""

def trace(path: _Path, output: _Path) -> str:
    """Writes the log's trace to output; returns the statistics the viewer prints with it."""
