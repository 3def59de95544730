#!/usr/bin/env bash
# Builds Karvo Terrain with its tests and runs every test headless (Xvfb,
# Mesa software GL, SDL's dummy audio driver).
#
#   ./test.sh                                        build/ , all tests
#   BUILD_DIR=build-asan CMAKE_ARGS=-DSANITIZE=ON ./test.sh
#   ./test.sh -R timer                               extra arguments go to ctest
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
# shellcheck disable=SC2206
cmake_args+=(${CMAKE_ARGS:-})

karvo_install_packages
cmake -S . -B "$BUILD_DIR" "${cmake_args[@]}"
cmake --build "$BUILD_DIR" -j "$(karvo_jobs)"
karvo_ctest "$BUILD_DIR" "$@"
