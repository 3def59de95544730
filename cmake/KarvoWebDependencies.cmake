# The same libraries for the web build, under the names the native build
# gives them, so that no folder's CMakeLists.txt knows the difference: SDL2,
# SDL2_mixer and Dear ImGui built for WebAssembly from Debian's sources by
# web/scripts/build-libs.sh; WebGL2 from emscripten in place of libepoxy;
# stb_image compiled from Debian's header (web/glue).
set(KARVO_WEB_PREFIX "" CACHE PATH "Where web/scripts/build-libs.sh installed the web libraries")
if(NOT EXISTS "${KARVO_WEB_PREFIX}/lib/libSDL2.a")
  message(FATAL_ERROR "No web libraries in KARVO_WEB_PREFIX='${KARVO_WEB_PREFIX}': run ./web.sh")
endif()

function(karvo_web_library name)
  cmake_parse_arguments(ARG "" "" "INCLUDES;LIBS" ${ARGN})
  add_library(PkgConfig::${name} INTERFACE IMPORTED GLOBAL)
  set_target_properties(PkgConfig::${name} PROPERTIES INTERFACE_INCLUDE_DIRECTORIES "${ARG_INCLUDES}"
                                                     INTERFACE_LINK_LIBRARIES "${ARG_LIBS}")
endfunction()

set(prefix ${KARVO_WEB_PREFIX})
karvo_web_library(SDL2 INCLUDES ${prefix}/include/SDL2 LIBS ${prefix}/lib/libSDL2.a)
karvo_web_library(SDL2_MIXER INCLUDES ${prefix}/include/SDL2 LIBS ${prefix}/lib/libSDL2_mixer.a PkgConfig::SDL2)
karvo_web_library(IMGUI INCLUDES ${prefix}/include/imgui LIBS ${prefix}/lib/libimgui.a)
karvo_web_library(EPOXY)
add_library(karvo_stb STATIC ${PROJECT_SOURCE_DIR}/web/glue/StbImage.cpp)
target_include_directories(karvo_stb PUBLIC ${prefix}/include/stb)
karvo_web_library(STB LIBS karvo_stb)
add_library(Threads::Threads INTERFACE IMPORTED GLOBAL)
