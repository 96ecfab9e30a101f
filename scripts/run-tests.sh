#!/usr/bin/env bash
# Sets up, builds and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
ctest --test-dir "${KVT_BUILD_DIR:-build}" --output-on-failure --parallel "$(nproc)"
