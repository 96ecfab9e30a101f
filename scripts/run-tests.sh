#!/usr/bin/env bash
# Sets up, builds and runs every test: the release build, the same suite under ASan and UBSan,
# the concurrency tests under TSan, a link-time check for names defined twice, a short fuzzing
# run, and the Windows and 64-bit Arm builds
# with their tests under Wine and QEMU. --quick runs the release suite only; --skip-platforms
# (or KVT_SKIP_PLATFORMS=1) leaves out the Windows and Arm stages.
set -euo pipefail
cd "$(dirname "$0")/.."
jobs=$(nproc)
quick=0 platforms=1
[[ ${KVT_SKIP_PLATFORMS:-0} == 1 ]] && platforms=0
for arg in "$@"; do
  case $arg in
    --quick) quick=1 ;;
    --skip-platforms) platforms=0 ;;
    *) echo "usage: $0 [--quick] [--skip-platforms]" >&2; exit 2 ;;
  esac
done

# Each stage's heading says how long the run has taken so far, for CI's time budget.
stage() { printf '\n=== %s (after %d s)\n' "$*" "$SECONDS"; }

# The readers, the viewer and their tests for another platform; the release build's log tool
# compiles the test logs.
cross_build_and_test() { # build-dir toolchain-file
  cmake -S . -B "$1" -G Ninja -DCMAKE_TOOLCHAIN_FILE="$2" \
    -DKVT_HOST_LOG_TOOL="$PWD/build/bin/kvt-profile-log" >/dev/null
  cmake --build "$1" --parallel "$jobs"
  # An emulator may fail to start a program now and then; a test fails when it fails twice.
  # The corruption sweep of the golden logs, minutes under an emulator, is the sanitizers' job;
  # the fixture log's sweep still runs the platform's file and memory calls over every cut.
  ctest --test-dir "$1" --output-on-failure --parallel "$jobs" --repeat until-pass:2 \
    -E "CorruptionSweep.*/golden_"
}

stage "release build and tests"
# The report page's test drives a real browser with Debian's own python3.
bash scripts/setup.sh chromium chromium-driver python3-selenium
bash scripts/build.sh
ctest --test-dir build --output-on-failure --parallel "$jobs"
((quick)) && exit 0

# The sanitizer builds optimise lightly and keep line tables only: their reports still name
# file and line, and they compile in about two thirds of the time of -O2 -g.
sanitized=(-DCMAKE_BUILD_TYPE=RelWithDebInfo "-DCMAKE_CXX_FLAGS_RELWITHDEBINFO=-O1 -g1 -DNDEBUG")

stage "address and undefined-behaviour sanitizers"
KVT_BUILD_DIR=build-asan bash scripts/build.sh "${sanitized[@]}" -DKVT_SANITIZE=address,undefined
ctest --test-dir build-asan --output-on-failure --parallel "$jobs"

stage "thread sanitizer on the concurrency tests"
bash scripts/setup.sh
# The release build's log tool compiles the test logs.
cmake -S . -B build-tsan -G Ninja "${sanitized[@]}" -DKVT_SANITIZE=thread \
  -DKVT_LOG_TOOL="$PWD/build/bin/kvt-profile-log" >/dev/null
cmake --build build-tsan --parallel "$jobs" --target KvtReaderThreadTests KvtReadAheadTests
build-tsan/bin/KvtReaderThreadTests
build-tsan/bin/KvtReadAheadTests

stage "one definition of each name (link-time optimisation with -Wodr)"
# Two types or declarations of one name in one program link silently and break at run time; GCC
# compares them across translation units only when it links their intermediate code. -O0 keeps
# the stage cheap; the programs and libraries are enough, the tests add only their own code.
odr_errors="-Werror=odr -Werror=lto-type-mismatch"
cmake -S . -B build-odr -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS_DEBUG=-O0 \
  -DCMAKE_INTERPROCEDURAL_OPTIMIZATION=ON -DKVT_BUILD_TESTS=OFF \
  "-DCMAKE_EXE_LINKER_FLAGS=$odr_errors" "-DCMAKE_SHARED_LINKER_FLAGS=$odr_errors" \
  "-DCMAKE_MODULE_LINKER_FLAGS=$odr_errors" >/dev/null
cmake --build build-odr --parallel "$jobs" -- -k 0 # every clash at once

stage "fuzzing for ${KVT_FUZZ_SECONDS:-60} seconds"
bash Tools/Utilities/Profiler/Fuzzer/run-fuzzer.sh "${KVT_FUZZ_SECONDS:-60}"

if ((platforms)); then
  bash scripts/setup.sh g++-mingw-w64-x86-64-posix wine64 g++-aarch64-linux-gnu qemu-user

  stage "windows build and tests under wine"
  cross_build_and_test build-mingw cmake/toolchains/mingw-w64-x86_64.cmake

  stage "aarch64 build and tests under qemu"
  cross_build_and_test build-aarch64 cmake/toolchains/aarch64-linux-gnu.cmake
fi

stage "all stages passed"
