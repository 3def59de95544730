#!/usr/bin/env bash
# Builds Karvo Terrain with its tests and runs every test headless (Xvfb,
# Mesa software GL, SDL's dummy audio driver).
#
#   ./test.sh                                        build/ , all tests
#   BUILD_DIR=build-asan CMAKE_ARGS=-DSANITIZE=ON ./test.sh
#   ./test.sh -R timer                               extra arguments go to ctest
#   KARVO_WEB=0 ./test.sh                            without the web page and its browser test
set -euo pipefail
cd "$(dirname "$0")"
source scripts/common.sh

BUILD_DIR="${BUILD_DIR:-build}"
# Set explicitly: a build/ configured by hand may have them off.
cmake_args=(-DKARVO_TESTS=ON)
if [ "${CI:-}" = "true" ]; then
  cmake_args+=(-DWERROR=ON)
else
  cmake_args+=(-DWERROR=OFF)
fi
web="${KARVO_WEB:-1}"
if [ "$web" != 0 ]; then
  cmake_args+=(-DKARVO_WEB_TEST=ON)
else
  cmake_args+=(-DKARVO_WEB_TEST=OFF)
fi
# shellcheck disable=SC2206
cmake_args+=(${CMAKE_ARGS:-})

karvo_install_packages
cmake -S . -B "$BUILD_DIR" "${cmake_args[@]}"
cmake --build "$BUILD_DIR" -j "$(karvo_jobs)"
if [ "$web" != 0 ]; then
  # The page (its libraries are built once and kept in build-web/), and the
  # browser test's own packages, exactly as its lockfile pins them.
  BUILD_DIR="$BUILD_DIR" WERROR="$([ "${CI:-}" = true ] && echo ON || echo OFF)" web/scripts/build.sh
  if [ ! -f web/test/node_modules/.package-lock.json ] ||
     [ web/test/package-lock.json -nt web/test/node_modules/.package-lock.json ]; then
    (cd web/test && npm ci --no-audit --no-fund)
  fi
fi
karvo_ctest "$BUILD_DIR" "$@"
