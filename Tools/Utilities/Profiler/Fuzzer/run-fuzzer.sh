#!/usr/bin/env bash
# Builds the log fuzzer with clang, ASan and UBSan, seeds it from the fixture and synthetic
# logs, and fuzzes for the given number of seconds (default 60). The limits leave room for a
# chunk cut short by the end of the input (the harness skips claims far beyond it).
#   run-fuzzer.sh [SECONDS] [extra libFuzzer flags...]
set -euo pipefail
cd "$(dirname "$0")/../../../.."
seconds=${1:-60}
shift || true
bash scripts/setup.sh clang libclang-rt-14-dev
build_dir=${KVT_FUZZ_BUILD_DIR:-build-fuzz}
# Line tables only, for a quicker build; -O2 keeps the fuzzer's executions per second.
CXX=clang++ cmake -S . -B "$build_dir" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O2 -g1 -DNDEBUG" \
  -DKVT_BUILD_FUZZER=ON -DKVT_BUILD_TESTS=OFF -DKVT_SANITIZE=address,undefined >/dev/null
cmake --build "$build_dir" --parallel "$(nproc)" --target kvt-log-fuzzer

fuzz_dir=Tools/Utilities/Profiler/Fuzzer
corpus=$build_dir/fuzz-corpus
mkdir -p "$corpus"
# Seeds: the fixture logs of the test builds and a few small synthetic logs.
for dir in "$build_dir" build build-asan; do
  if [[ -d $dir ]]; then
    find "$dir" -name '*.log' -size -256k -not -path "$corpus/*" -exec cp {} "$corpus/" \;
  fi
done
# The release build's log tool writes them, when there is one.
tool=build/bin/kvt-profile-log
if [[ -x $tool ]]; then
  "$tool" synth -o "$corpus/synth-linting.log" --graphs 2 --executions 3 --steps 3 --detail linting
  "$tool" synth -o "$corpus/synth-basic.log" --graphs 1 --executions 2 --steps 2 --detail basic \
    --queue-wait --messages-per-chunk 2
fi
"$build_dir/bin/kvt-log-fuzzer" "$corpus" -dict="$fuzz_dir/log.dict" -artifact_prefix="$build_dir/" \
  -max_total_time="$seconds" -rss_limit_mb=6144 -timeout=60 -print_final_stats=1 "$@"
