#!/usr/bin/env bash
# Builds Karvo Terrain and its assets into build/ and starts it.
# Installs the Debian packages that are missing first (with sudo when not root).
set -euo pipefail
cd "$(dirname "$0")"
source scripts/common.sh

BUILD_DIR="${BUILD_DIR:-build}"

karvo_install_packages
# shellcheck disable=SC2086
# The configuration stays the one ./test.sh uses (tests included): switching
# them off here left ctest listing test programs that no build renewed. Only
# what the program and `cmake --install` need is built.
cmake -S . -B "$BUILD_DIR" ${CMAKE_ARGS:-}
cmake --build "$BUILD_DIR" -j "$(karvo_jobs)" --target karvo-terrain karvo_assets karvo_icons

mkdir -p "$BUILD_DIR/assets"
# The program reads Data/, music/ and speech/mp3/ from its working directory.
cd "$BUILD_DIR/assets"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display found (DISPLAY is not set): running under Xvfb, nothing will be visible."
  if [ ! -e /dev/snd ] && [ -z "${PULSE_SERVER:-}" ] && [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    # No sound device either: let SDL mix into nothing rather than fail.
    export SDL_AUDIODRIVER="${SDL_AUDIODRIVER:-dummy}"
  fi
  # A private X server in a session of its own, so that Ctrl+C (SIGINT to the
  # terminal's foreground process group) reaches only the program, which then
  # ends cleanly; the server goes after it. xvfb-run would run the program
  # with SIGINT ignored and let Ctrl+C take the server from under it.
  display_file="$(mktemp)"
  setsid Xvfb -displayfd 3 -screen 0 1600x1000x24 -nolisten tcp 3>"$display_file" >/dev/null 2>&1 &
  xvfb_pid=$!
  trap 'kill "$xvfb_pid" 2>/dev/null; wait "$xvfb_pid" 2>/dev/null; rm -f "$display_file"' EXIT
  for _ in $(seq 100); do
    [ -s "$display_file" ] && break
    sleep 0.1
  done
  if [ ! -s "$display_file" ]; then
    echo "error: Xvfb did not start" >&2
    exit 1
  fi
  export DISPLAY=":$(head -n 1 "$display_file")"
  # A handled (not ignored) SIGINT: the shell waits for the program's own end,
  # and the program gets the default disposition to install its handler on.
  trap ':' INT TERM
  status=0
  ../karvo-terrain || status=$?
  exit "$status"
fi
exec ../karvo-terrain
