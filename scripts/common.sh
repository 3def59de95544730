# Shared by ./run.sh and ./test.sh: package installation and the headless
# wrapper. Sourced, not run.

KARVO_ROOT="$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)"

# Installs every package of scripts/packages.txt (or of the lists given)
# that is not installed yet. dpkg-query answers in well under a second, so a
# machine that has them all never reaches apt-get.
karvo_install_packages() {
  local wanted=() missing=() pkg list
  local lists=("$@")
  [ ${#lists[@]} -eq 0 ] && lists=("$KARVO_ROOT/scripts/packages.txt")
  for list in "${lists[@]}"; do
    while read -r pkg; do
      pkg="${pkg%%#*}"
      pkg="${pkg//[[:space:]]/}"
      [ -n "$pkg" ] && wanted+=("$pkg")
    done < "$list"
  done

  for pkg in "${wanted[@]}"; do
    if ! dpkg-query -W -f='${Status}' "$pkg" 2>/dev/null | grep -q "install ok installed"; then
      missing+=("$pkg")
    fi
  done
  [ ${#missing[@]} -eq 0 ] && return 0

  echo "Installing missing packages: ${missing[*]}"
  local sudo=""
  if [ "$(id -u)" -ne 0 ]; then
    if command -v sudo >/dev/null 2>&1; then
      sudo="sudo"
    else
      echo "error: not root and no sudo; please install: ${missing[*]}" >&2
      return 1
    fi
  fi
  $sudo apt-get update -qq
  DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
}

# Number of parallel build jobs: every core, as the machine allows.
karvo_jobs() {
  nproc 2>/dev/null || echo 2
}

# Runs a command under a virtual X server with a screen big enough for the
# program's window.
karvo_xvfb() {
  xvfb-run -a -s "-screen 0 1600x1000x24" "$@"
}

# Runs ctest over a build folder as the suite runs: one X server for all
# tests that open windows, Mesa's software GL, SDL's dummy audio driver unless
# another is chosen. Further arguments go to ctest.
karvo_ctest() {
  local build=$1
  shift
  karvo_xvfb env SDL_AUDIODRIVER="${SDL_AUDIODRIVER:-dummy}" LIBGL_ALWAYS_SOFTWARE=1 \
    ctest --test-dir "$build" --output-on-failure "$@"
}
