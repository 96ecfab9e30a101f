#!/usr/bin/env bash
# Runs a Windows program under Debian's 64-bit Wine, without Wine's own diagnostics.
export WINEDEBUG=${WINEDEBUG:--all}
exec /usr/lib/wine/wine64 "$@"
