#!/usr/bin/env bash
# Installs the build and test dependencies from Debian's packages; quick when all is there.
set -euo pipefail

packages=(cmake ninja-build g++ libflatbuffers-dev flatbuffers-compiler rapidjson-dev
          googletest libgtest-dev libcli11-dev help2man dpkg-dev file
          pybind11-dev python3-dev python3-pandas python3-pytest)
packages+=("$@") # extra packages a caller needs (sanitizer runtimes, valgrind, ...)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
((${#missing[@]} == 0)) && exit 0

if [[ $(id -u) -ne 0 ]]; then
  echo "setup: missing packages (${missing[*]}); run as root to install them" >&2
  exit 1
fi
echo "setup: installing ${missing[*]}" >&2
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
