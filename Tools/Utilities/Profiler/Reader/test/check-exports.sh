#!/usr/bin/env bash
# Fails unless the shared library exports exactly the reader functions.
#   check-exports.sh LIBRARY TOOL: TOOL is the toolchain's nm for ELF libraries, its objdump for
#   Windows DLLs (whose export table lists the names after "[Ordinal/Name Pointer] Table").
set -euo pipefail
library=$1 tool=$2
if [[ $library == *.dll ]]; then
  actual=$("$tool" -p "$library" |
    awk '/^\[Ordinal\/Name Pointer\] Table/ {table = 1; next} table && NF == 0 {table = 0}
         table {print $NF}' | sort)
else
  actual=$("$tool" -D --defined-only "$library" | awk '{print $3}' | sort)
fi
expected=$(printf '%s\n' createReader deleteReader registerLogger unregisterLogger)
if [[ "$actual" != "$expected" ]]; then
  echo "unexpected exports of $library:"; echo "$actual"; exit 1
fi
echo "exports of $(basename "$library") are exactly: $(echo $actual)"
