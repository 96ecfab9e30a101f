#!/usr/bin/env bash
# Sets up, builds and runs the viewer on the example log: the statistics go to the standard output,
# the trace to build/example-trace.json.
set -euo pipefail
cd "$(dirname "$0")/.."
build_dir=${KVT_BUILD_DIR:-build}
bash scripts/build.sh
# The example is the full detailed run among the golden cases, compiled into a log by the build.
log=$build_dir/Tools/Utilities/Profiler/Reader/test/golden/detailed-execution.log
"$build_dir/bin/kvt-profile-viewer" --input "$log" --output "$build_dir/example-trace.json"
echo "Trace written to $build_dir/example-trace.json" >&2
