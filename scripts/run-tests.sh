#!/usr/bin/env bash
# Sets up, builds and runs every test: the release build, the same suite under ASan and UBSan,
# the concurrency tests under TSan, and a short fuzzing run. --quick runs the release suite only.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)

stage() { printf '\n=== %s\n' "$*"; }

stage "release build and tests"
bash scripts/build.sh
ctest --test-dir build --output-on-failure --parallel "$jobs"
[[ ${1:-} == --quick ]] && exit 0

stage "address and undefined-behaviour sanitizers"
KVT_BUILD_DIR=build-asan bash scripts/build.sh -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DKVT_SANITIZE=address,undefined
ctest --test-dir build-asan --output-on-failure --parallel "$jobs"

stage "thread sanitizer on the concurrency tests"
bash scripts/setup.sh
cmake -S . -B build-tsan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DKVT_SANITIZE=thread >/dev/null
cmake --build build-tsan --parallel "$jobs" --target KvtReaderTests
build-tsan/bin/KvtReaderTests --gtest_filter='*Thread*'

stage "fuzzing for ${KVT_FUZZ_SECONDS:-60} seconds"
bash Tools/Utilities/Profiler/Fuzzer/run-fuzzer.sh "${KVT_FUZZ_SECONDS:-60}"
