#!/usr/bin/env bash
# Builds Karvo Terrain and its assets into build/ and starts it.
# Installs the Debian packages that are missing first (with sudo when not root).
set -euo pipefail
cd "$(dirname "$0")"
source scripts/common.sh

BUILD_DIR="${BUILD_DIR:-build}"

karvo_install_packages
# shellcheck disable=SC2086
cmake -S . -B "$BUILD_DIR" -DKARVO_TESTS=OFF -DKARVO_BENCH=OFF ${CMAKE_ARGS:-}
cmake --build "$BUILD_DIR" -j "$(karvo_jobs)"

mkdir -p "$BUILD_DIR/assets"
# The program reads Data/, music/ and speech/mp3/ from its working directory.
cd "$BUILD_DIR/assets"
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ]; then
  echo "No display found (DISPLAY is not set): running under Xvfb, nothing will be visible."
  if [ ! -e /dev/snd ] && [ -z "${PULSE_SERVER:-}" ] && [ -z "${XDG_RUNTIME_DIR:-}" ]; then
    # No sound device either: let SDL mix into nothing rather than fail.
    export SDL_AUDIODRIVER="${SDL_AUDIODRIVER:-dummy}"
  fi
  exec xvfb-run -a -s "-screen 0 1600x1000x24" ../karvo-terrain
fi
exec ../karvo-terrain
