#!/usr/bin/env bash
# Runs a script in Windows node.exe under Wine, with node.exe's exit code.
#
#   scripts/wine/node.sh [--expect REGEX] <script.js> [args...]
#
# --expect REGEX: also require a line of output matching REGEX (grep -E). Under Wine a
#   native crash can end with exit code 0, so a test prints an explicit pass line and has
#   it checked here.
# ORVA_WINE_HOST=<name>.exe runs a copy of node.exe under that name: Electron's host is
#   not called node.exe, and our modules must still find N-API (src/platform's hook).
# ORVA_WINE_NODE_ARGS: extra node.exe options (space-separated).
#
# Quirks handled here (environment: scripts/wine/env.sh):
#   - node.exe crashes on its first console write when stdout/stderr is a Unix pipe.
#     stdio-preload.js (node -r) turns process.stdout/stderr into synchronous fd writers.
#     A child node.exe spawned with stdio 'inherit' would get the Unix pipe and crash:
#     spawn children with pipes and relay (scripts/run-js-tests.js does for node --test).
#   - The script is given to node.exe as a Windows path (Z:\...); other arguments are
#     passed unchanged.
#   - Prepares node.exe and the prefix on first use (scripts/wine/setup.sh).
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
source "$here/env.sh"

expect=
if [[ ${1:-} == --expect ]]; then
  expect=$2
  shift 2
fi
if [[ $# -lt 1 ]]; then
  echo "usage: $0 [--expect REGEX] <script.js> [args...]" >&2
  exit 2
fi
script=$1
shift
[[ -f $script ]] || { echo "wine node: no such script: $script" >&2; exit 2; }

"$here/setup.sh" >/dev/null

host=$ORVA_WIN_NODE
if [[ -n ${ORVA_WINE_HOST:-} ]]; then
  host=$(dirname "$ORVA_WIN_NODE")/$ORVA_WINE_HOST
  [[ -f $host ]] || cp "$ORVA_WIN_NODE" "$host"
fi

trap orva_wine_stop EXIT
orva_wine_start
# shellcheck disable=SC2086
orva_wine_run "$expect" "$host" ${ORVA_WINE_NODE_ARGS:-} \
  -r "$(orva_winpath "$here/stdio-preload.js")" "$(orva_winpath "$script")" "$@"
