#!/usr/bin/env bash
# Installs the build into a temporary prefix and starts the desktop entry's
# command from an unrelated folder; then makes the Debian package and checks
# its files and dependencies, and starts the launcher of its unpacked tree.
# Argument: the build folder. Needs a display (Xvfb in ./test.sh).
set -uo pipefail
build=$(readlink -f "$1")
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
fail=0
problem() { echo "FAIL: $*"; fail=1; }

source "$(dirname "$0")/../support/AwaitMusic.sh"

# Runs a launcher from an empty folder until its first frame (a missing asset
# ends the start before it), then ends it as the desktop does: it must print
# nothing about the assets and end with code 0.
starts() {
  local launcher=$1 log="$work/run.log" audio="$work/run.raw" pid heard code
  mkdir -p "$work/elsewhere" && rm -f "$audio"
  (cd "$work/elsewhere" && exec env SDL_AUDIODRIVER=disk SDL_DISKAUDIOFILE="$audio" "$launcher" > "$log" 2>&1) &
  pid=$!
  await_music "$audio" "$pid"
  heard=$?
  kill -TERM "$pid" 2> /dev/null
  wait "$pid"
  code=$?
  case "$heard,$code" in
    0,0) ;;
    1,*) cat "$log"; problem "$launcher ended by itself with code $code" ;;
    2,*) problem "$launcher drew no frame in two minutes: the start hung" ;;
    *) cat "$log"; problem "$launcher ended with code $code when asked to" ;;
  esac
  if grep -qiE "cannot|missing|not found|failed" "$log"; then cat "$log"; problem "$launcher complained"; fi
}

prefix="$work/prefix"
cmake --install "$build" --prefix "$prefix" > /dev/null || problem "cmake --install"
for file in bin/karvo-terrain lib/karvo-terrain/karvo-terrain share/karvo-terrain/Data/HeightMap.raw \
            share/karvo-terrain/music/1.mp3 share/applications/karvo-terrain.desktop \
            share/icons/hicolor/{48x48,128x128,256x256}/apps/karvo-terrain.png; do
  [ -e "$prefix/$file" ] || problem "not installed: $file"
done
entry="$prefix/share/applications/karvo-terrain.desktop"
desktop-file-validate "$entry" || problem "desktop-file-validate rejects the entry"
command=$(sed -n 's/^Exec=//p' "$entry")
PATH="$prefix/bin:$PATH" starts "$(PATH="$prefix/bin:$PATH" command -v "$command")"

(cd "$build" && cpack -G DEB -B "$work/package" > "$work/cpack.log" 2>&1) || { cat "$work/cpack.log"; problem "cpack"; }
deb=$(ls "$work"/package/*.deb 2> /dev/null | head -n 1)
if [ -z "$deb" ]; then
  problem "no package was made"
else
  dpkg-deb -c "$deb" | awk '{print $6}' > "$work/files"
  for file in ./usr/bin/karvo-terrain ./usr/lib/karvo-terrain/karvo-terrain ./usr/share/karvo-terrain/Data/HeightMap.raw \
              ./usr/share/karvo-terrain/speech/mp3/1.mp3 ./usr/share/applications/karvo-terrain.desktop \
              ./usr/share/icons/hicolor/{48x48,128x128,256x256}/apps/karvo-terrain.png; do
    grep -qxF "$file" "$work/files" || problem "not in the package: $file"
  done
  depends=$(dpkg-deb -f "$deb" Depends)
  echo "Depends: $depends"
  for library in libc6 libsdl2-2.0-0 libsdl2-mixer-2.0-0 libepoxy0 libstdc++6; do
    [[ "$depends" == *"$library "* || "$depends" == *"$library," || "$depends" == *"$library" ]] ||
      problem "Depends lacks $library"
  done
  dpkg-deb -x "$deb" "$work/root" && starts "$work/root/usr/bin/karvo-terrain"
fi
[ "$fail" -eq 0 ] && echo "install and package: ok"
exit "$fail"
