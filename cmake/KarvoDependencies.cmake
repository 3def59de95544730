# The real libraries behind the platform layer, all from Debian packages.
find_package(PkgConfig REQUIRED)
pkg_check_modules(SDL2 REQUIRED IMPORTED_TARGET sdl2)
pkg_check_modules(SDL2_MIXER REQUIRED IMPORTED_TARGET SDL2_mixer)
pkg_check_modules(EPOXY REQUIRED IMPORTED_TARGET epoxy)
find_package(Threads REQUIRED)

pkg_check_modules(IMGUI REQUIRED IMPORTED_TARGET imgui)
pkg_check_modules(STB REQUIRED IMPORTED_TARGET stb)

if(KARVO_TESTS)
  find_package(GTest REQUIRED)
endif()
if(KARVO_BENCH)
  find_package(benchmark QUIET)
endif()
