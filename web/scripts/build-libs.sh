#!/usr/bin/env bash
# Builds SDL2, SDL2_mixer and Dear ImGui for WebAssembly from Debian's source
# packages into $WEB_BUILD/libs/prefix, once: emscripten's own ports are
# downloads, and this machine reaches only the package registries. A stamp
# per library names the source version it was built from, so a later run
# that finds it skips the minutes SDL's configure takes.
#
#   web/scripts/build-libs.sh <web build folder>
set -euo pipefail
WEB_BUILD="$(mkdir -p "$1" && cd "$1" && pwd)"
LIBS="$WEB_BUILD/libs"
PREFIX="$LIBS/prefix"
SRC="$LIBS/src"
mkdir -p "$PREFIX" "$SRC"

SDL_VERSION=2.26.5+dfsg-1
MIXER_VERSION=2.6.2+dfsg-2
IMGUI_VERSION=1.86+ds-1

# apt-get source needs a deb-src entry; a fresh bookworm has none.
ensure_deb_src() {
  if apt-get indextargets --format '$(CREATED_BY)' 2>/dev/null | grep -q '^Sources$'; then
    return
  fi
  local sudo=""
  [ "$(id -u)" -ne 0 ] && sudo="sudo"
  printf '%s\n' "Types: deb-src" "URIs: http://deb.debian.org/debian" "Suites: bookworm" \
    "Components: main" "Signed-By: /usr/share/keyrings/debian-archive-keyring.gpg" |
    $sudo tee /etc/apt/sources.list.d/karvo-web-src.sources >/dev/null
  $sudo apt-get update -qq
}

# fetch <source package> <version> <folder glob>: unpacks it once into $SRC.
fetch() {
  local package=$1 version=$2 glob=$3
  if ! compgen -G "$SRC/$glob" >/dev/null; then
    ensure_deb_src
    (cd "$SRC" && apt-get source -qq --only-source "$package=$version" >/dev/null)
  fi
  compgen -G "$SRC/$glob" | head -n 1
}

built() { [ "$(cat "$LIBS/$1.stamp" 2>/dev/null)" = "$2" ]; }
mark() { echo "$2" >"$LIBS/$1.stamp"; }

if ! built sdl2 "$SDL_VERSION"; then
  dir=$(fetch libsdl2 "$SDL_VERSION" 'libsdl2-2.26.5*/')
  echo "web: building SDL2 $SDL_VERSION for WebAssembly (a few minutes, once)"
  emcmake cmake -S "$dir" -B "$LIBS/sdl2-build" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" -DSDL_STATIC=ON -DSDL_SHARED=OFF -DSDL_THREADS=OFF \
    -DSDL_TEST=OFF >"$LIBS/sdl2-configure.log"
  cmake --build "$LIBS/sdl2-build" -j "$(nproc)" >"$LIBS/sdl2-build.log"
  cmake --install "$LIBS/sdl2-build" >/dev/null
  mark sdl2 "$SDL_VERSION"
fi

if ! built sdl2-mixer "$MIXER_VERSION"; then
  dir=$(fetch libsdl2-mixer "$MIXER_VERSION" 'libsdl2-mixer-2.6.2*/')
  echo "web: building SDL2_mixer $MIXER_VERSION for WebAssembly"
  # Only mp3, through the dr_mp3 the source carries: every sound and the
  # music of the program are mp3 files.
  emcmake cmake -S "$dir" -B "$LIBS/mixer-build" -DCMAKE_BUILD_TYPE=Release \
    -DCMAKE_INSTALL_PREFIX="$PREFIX" -DCMAKE_PREFIX_PATH="$PREFIX" -DBUILD_SHARED_LIBS=OFF \
    -DSDL2MIXER_SAMPLES=OFF -DSDL2MIXER_DEPS_SHARED=OFF -DSDL2MIXER_VENDORED=OFF \
    -DSDL2MIXER_MP3=ON -DSDL2MIXER_MP3_DRMP3=ON -DSDL2MIXER_MP3_MPG123=OFF \
    -DSDL2MIXER_CMD=OFF -DSDL2MIXER_FLAC=OFF -DSDL2MIXER_MOD=OFF -DSDL2MIXER_MIDI=OFF \
    -DSDL2MIXER_OPUS=OFF -DSDL2MIXER_VORBIS=OFF -DSDL2MIXER_WAVE=ON \
    -DSDL2_DIR="$PREFIX/lib/cmake/SDL2" >"$LIBS/mixer-configure.log"
  cmake --build "$LIBS/mixer-build" -j "$(nproc)" >"$LIBS/mixer-build.log"
  cmake --install "$LIBS/mixer-build" >/dev/null
  mark sdl2-mixer "$MIXER_VERSION"
fi

if ! built imgui "$IMGUI_VERSION"; then
  dir=$(fetch imgui "$IMGUI_VERSION" 'imgui-1.86*/')
  echo "web: building Dear ImGui $IMGUI_VERSION for WebAssembly"
  obj="$LIBS/imgui-build"
  mkdir -p "$obj" "$PREFIX/include/imgui"
  for f in imgui imgui_draw imgui_tables imgui_widgets; do
    em++ -O2 -std=c++17 -c "$dir/$f.cpp" -o "$obj/$f.o"
  done
  rm -f "$PREFIX/lib/libimgui.a"
  emar rcs "$PREFIX/lib/libimgui.a" "$obj"/*.o
  cp "$dir"/imgui.h "$dir"/imconfig.h "$dir"/imgui_internal.h "$dir"/imstb_*.h "$PREFIX/include/imgui/"
  mark imgui "$IMGUI_VERSION"
fi

# stb_image is one header; web/glue compiles its implementation. The copy
# keeps the rest of /usr/include out of the WebAssembly build.
mkdir -p "$PREFIX/include/stb"
cp /usr/include/stb/stb_image.h "$PREFIX/include/stb/"
