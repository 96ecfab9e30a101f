"""Profiling logs as pandas data frames (stubs of the compiled module kvtprofile)."""

import os
from typing import Union

import pandas

_Path = Union[str, os.PathLike[str]]

class LogError(Exception):
    """The log was refused: the file and what is wrong where, then the reader's own messages."""

def executions(path: _Path, *, visibility: int = 127, skip_first: int = 0,
               partial: bool = False) -> pandas.DataFrame:
    """Every execution's values, a row per value: graph, execution, series, parent, name,
    occurrence, value."""

def stats(path: _Path, *, skip_first: int = 0, visibility: int = 127,
          partial: bool = False) -> pandas.DataFrame:
    """Each series' figures, a row per series, as `kvt-profile-log stats` gives them."""

def compare(base: _Path, new: _Path, *, alpha: float = 0.01, threshold: float = 5.0,
            min_change: float = 0.0, relative: bool = False,
            skip_first: int = 0, partial: bool = False) -> pandas.DataFrame:
    """Which series got slower or faster between two runs, a row per series, with the columns of
    `kvt-profile-log compare --format json` (base_count, base_p50, new_count, new_p50,
    interval_low, interval_high flat); graphs and totals in attrs."""

def summary(path: _Path) -> str:
    """The reader's statistics summary of the log, as the viewer prints it."""

def trace(path: _Path, output: _Path) -> str:
    """Writes the log's trace to output; returns the statistics the viewer prints with it."""
