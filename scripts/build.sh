#!/usr/bin/env bash
# Installs what is missing, then configures and builds into build/ (or $KVT_BUILD_DIR).
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/setup.sh
build_dir=${KVT_BUILD_DIR:-build}
cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=Release "$@" >/dev/null
cmake --build "$build_dir" --parallel "$(nproc)"
