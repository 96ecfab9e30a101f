"""Where the tests find the log tool and the golden cases of its commands (set by ctest)."""

import os
import pathlib

import pytest


@pytest.fixture(scope="session")
def log_tool():
    return os.environ["KVT_LOG_TOOL"]


def golden_dir():
    return pathlib.Path(os.environ["KVT_TOOL_GOLDEN_DIR"])


LOG_DIR = pathlib.Path(os.environ["KVT_TOOL_LOG_DIR"])

