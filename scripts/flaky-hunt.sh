#!/usr/bin/env bash
# Hunts for tests that pass or fail by how fast the machine is: builds the
# suite once into a fresh folder, then runs it N times in a row, idle and
# beside a busy loop on every core by turns, and prints a table of the rounds.
#
#   scripts/flaky-hunt.sh                      6 rounds in build-hunt-<time>/
#   N=2 scripts/flaky-hunt.sh                  2 rounds
#   N=4 BUILD_DIR=build-hunt scripts/flaky-hunt.sh -R audio
#                                              extra arguments go to ctest
#
# CMAKE_ARGS and CI act as for ./test.sh. Each round's ctest output is kept
# in BUILD_DIR/hunt/. The exit code is 1 when any round failed.
set -euo pipefail
cd "$(dirname "$0")/.."
source scripts/common.sh

rounds="${N:-6}"
build="${BUILD_DIR:-build-hunt-$(date +%Y%m%d-%H%M%S)}"
if [ -e "$build" ]; then
  echo "error: $build exists; the hunt builds into a folder of its own" >&2
  exit 2
fi

# Configured and built as ./test.sh does it; -N only lists the tests.
echo "building the suite into $build"
BUILD_DIR="$build" ./test.sh -N
mkdir -p "$build/hunt"

loaders=()
stop_load() {
  [ ${#loaders[@]} -eq 0 ] || kill "${loaders[@]}" 2> /dev/null || true
  loaders=()
}
trap stop_load EXIT

table=() failed=0
for round in $(seq "$rounds"); do
  load=idle
  if [ $((round % 2)) -eq 0 ]; then
    load=loaded
    for _ in $(seq "$(nproc)"); do
      (while :; do :; done) &
      loaders+=($!)
    done
  fi
  log="$build/hunt/round-$round.log"
  echo "round $round of $rounds, $load: $log"
  start=$(date +%s)
  if karvo_ctest "$build" "$@" > "$log" 2>&1; then
    result=passed broken=""
  else
    result=FAILED
    broken=$(sed -n '/The following tests FAILED:/,$ s/^[[:space:]]*[0-9]\+ - \([^ ]*\) .*/\1/p' "$log" | tr '\n' ' ')
    broken=${broken:-"(see the log)"} failed=1
  fi
  stop_load
  table+=("$(printf '%-6s %-7s %-7s %8s  %s' "$round" "$load" "$result" "$(($(date +%s) - start))" "$broken")")
done

printf '\n%-6s %-7s %-7s %8s  %s\n' round load result seconds "failed tests"
printf '%s\n' "${table[@]}"
exit "$failed"
