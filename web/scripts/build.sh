#!/usr/bin/env bash
# Builds the web page into build-web/site/: installs what is missing, makes
# the assets with a native build (build/), builds SDL2, SDL2_mixer and Dear
# ImGui for WebAssembly once (build-web/libs/), then the program.
#
#   web/scripts/build.sh           (from anywhere; ./web.sh and ./test.sh call it)
set -euo pipefail
cd "$(dirname "$0")/../.."
source scripts/common.sh

WEB_BUILD="${WEB_BUILD_DIR:-build-web}"
NATIVE_BUILD="${BUILD_DIR:-build}"

karvo_install_packages scripts/packages.txt web/packages.txt
# npm for the browser test; a Node.js from elsewhere brings its own.
if ! command -v npm >/dev/null 2>&1; then
  echo npm >"$WEB_BUILD.npm-list" && karvo_install_packages "$WEB_BUILD.npm-list" && rm -f "$WEB_BUILD.npm-list"
fi
# Debian's emscripten looks for its node modules beside Debian's node.
export NODE_PATH="${NODE_PATH:-/usr/share/nodejs}"

if [ ! -f "$NATIVE_BUILD/CMakeCache.txt" ]; then
  cmake -S . -B "$NATIVE_BUILD" ${CMAKE_ARGS:-} >/dev/null
fi
cmake --build "$NATIVE_BUILD" -j "$(karvo_jobs)" --target karvo_assets

web/scripts/build-libs.sh "$WEB_BUILD"

program="$WEB_BUILD/program"
emcmake cmake -S . -B "$program" -DCMAKE_BUILD_TYPE=Release -DWERROR="${WERROR:-OFF}" \
  -DKARVO_WEB_PREFIX="$PWD/$WEB_BUILD/libs/prefix" -DKARVO_WEB_ASSETS="$PWD/$NATIVE_BUILD/assets" >/dev/null
cmake --build "$program" -j "$(karvo_jobs)" --target karvo-terrain

site="$WEB_BUILD/site"
rm -rf "$site"
mkdir -p "$site"
cp "$program/karvo-terrain.html" "$site/index.html"
cp "$program"/karvo-terrain.{js,wasm,data} "$site/"
echo "web: the page is in $site/"
