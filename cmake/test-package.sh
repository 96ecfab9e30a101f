#!/usr/bin/env bash
# Makes the Debian package from the build folder, unpacks it into a temporary root and runs the
# packaged programs there: the viewer on the example log, the log tool for its version, and, when
# PYTHON is given, the Python module imported from the package by that interpreter.
# usage: test-package.sh BUILD_DIR VERSION [PYTHON]
set -euo pipefail
build_dir=$1
version=$2
python=${3:-}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

cpack --config "$build_dir/CPackConfig.cmake" -G DEB -B "$work/package" >"$work/cpack.txt" ||
  { cat "$work/cpack.txt"; exit 1; }
deb=$(echo "$work/package/kvt-profiler_${version}_"*.deb)
[[ -f $deb ]] || { echo "no package kvt-profiler_${version}_ARCH.deb"; ls "$work/package"; exit 1; }
depends=$(dpkg-deb --field "$deb" Depends)
[[ $depends == *libc6* ]] || { echo "dependencies not computed: '$depends'"; exit 1; }

root=$work/root
dpkg-deb --extract "$deb" "$root"
for program in kvt-profile-viewer kvt-profile-log; do
  [[ -s $root/usr/share/man/man1/$program.1.gz ]] || { echo "no manual page for $program"; exit 1; }
done
[[ -s $root/usr/share/doc/kvt-profiler/README.md ]] || { echo "no README"; exit 1; }

"$root/usr/bin/kvt-profile-viewer" --input "$build_dir/examples/example.log" \
  --output "$work/trace.json" >"$work/summary.txt"
grep -q '"traceEvents"' "$work/trace.json" || { echo "no trace written"; exit 1; }
grep -q 'Execute Stats (Average):' "$work/summary.txt" || { echo "no summary printed"; exit 1; }
printed=$("$root/usr/bin/kvt-profile-log" --version)
[[ $printed == "kvt-profile-log $version" ]] || { echo "log tool --version: '$printed'"; exit 1; }
if [[ -n $python ]]; then
  [[ $depends == *python3-pandas* ]] || { echo "no python3-pandas in Depends: '$depends'"; exit 1; }
  graphs=$(PYTHONPATH="$root/usr/lib/python3/dist-packages" "$python" -c \
    'import sys, kvtprofile; print(kvtprofile.executions(sys.argv[1]).graph.nunique())' \
    "$build_dir/examples/example.log")
  [[ $graphs == 2 ]] || { echo "the packaged module read $graphs graphs of the example, not 2"; exit 1; }
  [[ -s $root/usr/lib/python3/dist-packages/kvtprofile.pyi ]] || { echo "no type stubs"; exit 1; }
fi
echo "$(basename "$deb") installs and runs; Depends: $depends"
