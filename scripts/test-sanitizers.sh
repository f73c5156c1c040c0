#!/usr/bin/env bash
# npm run test:sanitizers: the asan (ASan+UBSan) and tsan builds, each running the native
# tests (ctest) and the script tests (node --test) through scripts/run-sanitized.sh; then
# the teardown storms on the tsan build.
# Every suite runs; the exit code is non-zero if any failed.
set -uo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

failed=()
# part TITLE COMMAND...: runs one part, reports its time, records a failure.
part() {
  local title=$1 start=$SECONDS
  shift
  echo "=== $title"
  if "$@"; then
    echo "=== $title: ok ($((SECONDS - start))s)"
  else
    echo "=== $title: FAILED ($((SECONDS - start))s)"
    failed+=("$title")
    return 1
  fi
}

tsan_built=0
for kind in asan tsan; do
  part "$kind build" node scripts/build.js "$kind" || continue
  [[ $kind == tsan ]] && tsan_built=1
  # The native test executables carry their own sanitizer runtime: no preload.
  part "$kind native tests (ctest)" \
    scripts/run-sanitized.sh --no-preload "$kind" ctest --preset "$kind" --output-on-failure
  part "$kind script tests (node --test)" \
    scripts/run-sanitized.sh "$kind" node scripts/run-js-tests.js
  if [[ $kind == asan ]]; then
    part "asan fuzzing (50,000 calls)" \
      scripts/run-sanitized.sh asan node test/fuzz/run.js --calls 50000 --seed 20261124
  fi
done

# Teardown storms under ThreadSanitizer: a fifth of the release build's runs, as each child
# is 10 to 40 times slower; still every scenario many times.
if ((tsan_built)); then
  part "tsan teardown storms" scripts/run-sanitized.sh tsan node test/storm/run.js --runs 20
fi

if ((${#failed[@]})); then
  printf 'test:sanitizers: FAILED: %s\n' "$(IFS=,; echo "${failed[*]}")"
  exit 1
fi
echo "test:sanitizers: passed"
