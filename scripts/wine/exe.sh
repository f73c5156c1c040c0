#!/usr/bin/env bash
# Runs a Windows executable under Wine, with its exit code.
#   scripts/wine/exe.sh [--expect REGEX] <program.exe> [args...]
# --expect REGEX as in scripts/wine/node.sh: a crash under Wine can exit 0.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/env.sh"

expect=
if [[ ${1:-} == --expect ]]; then
  expect=$2
  shift 2
fi
[[ $# -ge 1 ]] || { echo "usage: $0 [--expect REGEX] <program.exe> [args...]" >&2; exit 2; }
[[ -f $1 ]] || { echo "wine exe: no such program: $1" >&2; exit 2; }

"$here/setup.sh" >/dev/null
trap orva_wine_stop EXIT
orva_wine_start
orva_wine_run "$expect" "$@"
