#!/usr/bin/env bash
# npm run test:win: the Windows x64 cross build under Wine, with the official Windows
# node.exe. Needs `scripts/setup.sh --windows` (MinGW-w64, Wine); node.exe and the Wine
# prefix are prepared under build/wine/ on first use.
#   - test/wine/smoke.js in node.exe, then again in a host renamed like Electron's;
#   - test/wine/snapshot.js: a publish snapshot JPEG made by GDI+, decoded and checked;
#   - every script test (test/js/**/*.test.js) through Node's test runner in node.exe; a test
#     that cannot run on Windows skips with its reason;
#   - every Windows check executable (test/wine/*.cc), each closing with
#     "N passed, M failed".
# Every part runs; the exit code is non-zero if any failed.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

node scripts/build.js mingw || exit 1

failed=()
pass='^wine smoke: PASS$'
echo "--- wine: smoke test in node.exe"
scripts/wine/node.sh --expect "$pass" test/wine/smoke.js || failed+=("smoke (node.exe)")
# Electron's executable is not named node.exe: the modules bind N-API through a delay-load
# hook that has to work in any host.
echo "--- wine: smoke test in a host named orva-electron-host.exe"
ORVA_WINE_HOST=orva-electron-host.exe scripts/wine/node.sh --expect "$pass" test/wine/smoke.js ||
  failed+=("smoke (renamed host)")

# A publish snapshot through the addon: the simulated engine's HBITMAP, real GDI+ JPEG.
echo "--- wine: publish snapshot through GDI+ in node.exe"
scripts/wine/node.sh --expect '^snapshot: [1-9][0-9]* passed, 0 failed$' test/wine/snapshot.js ||
  failed+=("snapshot.js")

# The whole script suite, through Node's test runner in node.exe.
echo "--- wine: every script test in node.exe"
ORVA_BUILD=mingw scripts/wine/node.sh --expect '^# fail 0$' scripts/run-js-tests.js ||
  failed+=("script tests")

for source in test/wine/*.cc; do
  [[ -e $source ]] || continue
  name=$(basename "$source" .cc)
  echo "--- wine: $name.exe"
  scripts/wine/exe.sh --expect '[1-9][0-9]* passed, 0 failed$' "build/mingw/out/$name.exe" ||
    failed+=("$name")
done

if ((${#failed[@]})); then
  printf 'test:win: FAILED: %s\n' "${failed[*]}"
  exit 1
fi
echo "test:win: passed"
