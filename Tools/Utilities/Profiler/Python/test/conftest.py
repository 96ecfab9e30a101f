"""Where the tests find the log tool and the golden cases of its commands (set by ctest)."""

import os
import pathlib

import pytest


@pytest.fixture(scope="session")
def log_tool():
    return os.environ["KVT_LOG_TOOL"]


def golden_dir():
    return pathlib.Path(os.environ["KVT_TOOL_GOLDEN_DIR"])


def golden_logs():
    """Every log built from a golden case's JSON, as (case/name, path of the log)."""
    log_dir = pathlib.Path(os.environ["KVT_TOOL_LOG_DIR"])
    return [(f"{json.parent.name}/{json.stem}", log_dir / json.parent.name / f"{json.stem}.log")
            for json in sorted(golden_dir().glob("*/*.json"))]
