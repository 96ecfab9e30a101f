#!/usr/bin/env bash
# Writes a help2man include file whose COMMANDS section holds the --help of every command that
# TOOL --help lists under "Subcommands:", so that the manual page describes each command too.
# usage: commands-manual.sh TOOL OUTPUT
set -euo pipefail
tool=$1
output=$2
commands=$("$tool" --help | sed -n '/^Subcommands:$/,/^$/s/^  \([a-z][a-z-]*\) .*/\1/p')
[[ -n $commands ]] || { echo "$tool --help lists no commands" >&2; exit 1; }
{
  echo '[COMMANDS]'
  for command in $commands; do
    echo ".SS $command"
    echo '.nf'
    # roff reads a backslash as an escape and a leading dot or quote as a request.
    "$tool" "$command" --help | sed -e 's/\\/\\e/g' -e "s/^[.']/\\\\\&&/"
    echo '.fi'
  done
} >"$output"
