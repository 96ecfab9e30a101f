#!/usr/bin/env bash
# Sets up, builds and runs the viewer on the bundled example log: the statistics go to the
# standard output, the trace to build/example-trace.json.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${KVT_BUILD_DIR:-build}
bash scripts/build.sh
"$build_dir/bin/kvt-profile-viewer" --input "$build_dir/examples/example.log" \
  --output "$build_dir/example-trace.json"
echo "Trace written to $build_dir/example-trace.json" >&2
