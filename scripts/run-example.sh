#!/usr/bin/env bash
# Sets up, builds and runs the main job on the bundled example log.
set -euo pipefail
cd "$(dirname "$0")/.."
bash scripts/build.sh
echo "Built the reader libraries in ${KVT_BUILD_DIR:-build}/bin; the example trace comes with the viewer."
