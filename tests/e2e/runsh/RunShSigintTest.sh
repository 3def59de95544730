#!/usr/bin/env bash
# ./run.sh on a machine without a display, ended by Ctrl+C as a terminal sends
# it: SIGINT to the whole process group. The program must end with code 0, no
# X error may be printed, and no X server may be left running.
# Arguments: the source tree, the program, the assets folder.
set -uo pipefail
source_dir=$1 program=$2 assets=$3
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT

# run.sh as it is, on the program already built: cmake is a no-op here.
mkdir -p "$work/scripts" "$work/build" "$work/bin"
cp "$source_dir/run.sh" "$work/"
cp "$source_dir/scripts/common.sh" "$source_dir/scripts/packages.txt" "$work/scripts/"
ln -s "$program" "$work/build/karvo-terrain"
ln -s "$assets" "$work/build/assets"
printf '#!/bin/sh\nexit 0\n' > "$work/bin/cmake" && chmod +x "$work/bin/cmake"

# Job control gives run.sh a process group of its own with SIGINT at its
# default, as a terminal's foreground job has (a plain background job would
# start with SIGINT ignored).
set -m
# The suite's own BUILD_DIR and CMAKE_ARGS (CI's sanitizer stage sets them)
# would send run.sh to another build folder than the one laid out above.
env -u DISPLAY -u WAYLAND_DISPLAY -u BUILD_DIR -u CMAKE_ARGS PATH="$work/bin:$PATH" SDL_AUDIODRIVER=disk \
  SDL_DISKAUDIOFILE="$work/audio.raw" bash "$work/run.sh" > "$work/log" 2>&1 &
group=$!
# Ctrl+C once the world is built and frames run.
source "$source_dir/tests/support/AwaitMusic.sh"
await_music "$work/audio.raw" "$group"
heard=$?
server="$(pgrep -P "$group" -x Xvfb)"
kill -INT -- "-$group"
wait "$group"
code=$?
cat "$work/log"

fail=0
[ "$heard" -ne 1 ] || { echo "FAIL: run.sh ended before the first frame"; fail=1; }
[ "$heard" -ne 2 ] || { echo "FAIL: no frame ran in two minutes: the start hung"; fail=1; }
[ "$code" -eq 0 ] || { echo "FAIL: exit code $code"; fail=1; }
if grep -qi "X connection\|X Error\|XIO\|broken" "$work/log"; then echo "FAIL: an X error was printed"; fail=1; fi
[ -n "$server" ] || { echo "FAIL: run.sh started no X server of its own"; fail=1; }
if [ -n "$server" ] && kill -0 "$server" 2>/dev/null; then echo "FAIL: the X server was left running"; fail=1; fi
exit $fail
