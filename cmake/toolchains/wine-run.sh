#!/usr/bin/env bash
# Runs a Windows program under Debian's 64-bit Wine, quietly, in a Wine prefix of the project's
# own whose temporary folder lives in /dev/shm: the tests rewrite files thousands of times, and
# on disk each rewrite waits for a flush.
set -euo pipefail
export WINEDEBUG=${WINEDEBUG:--all}
export WINEPREFIX=${KVT_WINEPREFIX:-${XDG_CACHE_HOME:-$HOME/.cache}/kvt-wine}
wine=/usr/lib/wine/wine64
scratch=/dev/shm/kvt-wine-$(id -u)

if [[ ! -f $WINEPREFIX/.kvt-ready ]]; then
  mkdir -p "$WINEPREFIX"
  # Tests started in parallel may all get here; the first one makes the prefix.
  exec 9>"$WINEPREFIX.lock"
  flock 9
  if [[ ! -f $WINEPREFIX/.kvt-ready ]]; then
    "$wine" wineboot --init >/dev/null 2>&1
    /usr/lib/wine/wineserver -w
    if [[ -d /dev/shm ]]; then
      temp=$WINEPREFIX/drive_c/users/$(id -un)/Temp
      rm -rf "$temp"
      ln -s "$scratch" "$temp"
    fi
    touch "$WINEPREFIX/.kvt-ready"
  fi
  exec 9>&-
fi
[[ -d /dev/shm ]] && mkdir -p "$scratch" # gone after a restart
exec "$wine" "$@"
