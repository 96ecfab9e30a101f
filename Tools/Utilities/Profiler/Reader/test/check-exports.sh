#!/usr/bin/env bash
# Fails unless the shared library exports exactly the reader functions.
set -euo pipefail
actual=$(nm -D --defined-only "$1" | awk '{print $3}' | sort)
expected=$(printf '%s\n' createReader deleteReader registerLogger unregisterLogger)
if [[ "$actual" != "$expected" ]]; then
  echo "unexpected exports of $1:"; echo "$actual"; exit 1
fi
echo "exports of $(basename "$1") are exactly: $(echo $actual)"
