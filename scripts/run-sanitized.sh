#!/usr/bin/env bash
# Runs a command with a sanitizer runtime preloaded, so that the instrumented builds
# (presets asan and tsan) can be loaded into the uninstrumented node executable.
#
#   scripts/run-sanitized.sh [--no-preload] <asan|tsan> <command> [args...]
#   e.g. scripts/run-sanitized.sh asan node scripts/run-js-tests.js
#        scripts/run-sanitized.sh --no-preload tsan ctest --preset tsan --output-on-failure
#
# --no-preload: for commands whose programs link the runtime themselves (ctest running the
# instrumented native tests). cmake and ctest hang under a preloaded TSan runtime; ctest
# also drops LD_PRELOAD for every test it starts (cmake/OrvaTests.cmake).
#
# What it sets (values already in the environment are kept and take precedence):
#   LD_PRELOAD      the compiler's libasan.so / libtsan.so: the runtime must be the first
#                   library in the process, before node's own.
#   ASAN_OPTIONS    detect_leaks=0: node does not free everything at exit, and those
#                   leaks are not ours. Native test executables are fully instrumented;
#                   ctest runs them with leak detection back on (cmake/OrvaTests.cmake).
#   UBSAN_OPTIONS   stop at the first report, with a stack.
#   TSAN_OPTIONS    suppressions from scripts/tsan.supp (node's own threads only).
#   ORVA_BUILD      the matching build (asan or tsan) unless already set.
#   ORVA_SANITIZER  asan or tsan. A script test that cannot run under a sanitizer opts out
#                   by checking it, and says why:
#                     test('...', { skip: process.env.ORVA_SANITIZER === 'tsan' && 'why' }, ...)
set -euo pipefail

usage() { echo "usage: $0 [--no-preload] <asan|tsan> <command> [args...]" >&2; exit 2; }
preload=1
if [[ ${1:-} == --no-preload ]]; then
  preload=0
  shift
fi
[[ $# -ge 2 ]] || usage
kind=$1
shift
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
cxx=${CXX:-g++}

case $kind in
  asan)
    runtime=$("$cxx" -print-file-name=libasan.so)
    export ASAN_OPTIONS="detect_leaks=0:halt_on_error=1:abort_on_error=0:print_summary=1${ASAN_OPTIONS:+:$ASAN_OPTIONS}"
    export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1${UBSAN_OPTIONS:+:$UBSAN_OPTIONS}"
    ;;
  tsan)
    runtime=$("$cxx" -print-file-name=libtsan.so)
    export TSAN_OPTIONS="suppressions=$here/tsan.supp:second_deadlock_stack=1:history_size=4${TSAN_OPTIONS:+:$TSAN_OPTIONS}"
    ;;
  *) usage ;;
esac

# -print-file-name echoes the bare name back when the runtime is not installed.
if [[ $runtime != /* || ! -e $runtime ]]; then
  echo "run-sanitized: the $kind runtime of $cxx was not found (got '$runtime')" >&2
  exit 2
fi
runtime=$(readlink -f "$runtime")

if ((preload)); then
  export LD_PRELOAD="$runtime${LD_PRELOAD:+:$LD_PRELOAD}"
fi
export ORVA_SANITIZER=$kind
export ORVA_BUILD=${ORVA_BUILD:-$kind}
exec "$@"
