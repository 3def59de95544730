# Small helpers so that each folder's CMakeLists.txt stays a few lines long.

# Adds every listed folder that has a CMakeLists.txt of its own; folders of
# work not yet written are simply skipped.
function(karvo_add_subdirectories)
  foreach(dir IN LISTS ARGN)
    if(EXISTS ${CMAKE_CURRENT_SOURCE_DIR}/${dir}/CMakeLists.txt)
      add_subdirectory(${dir})
    endif()
  endforeach()
endfunction()

# karvo_library(NAME LINKS <targets...> PRIVATE_LINKS <targets...> EXCLUDE <files...>
#               FOLDERS <subfolders...>)
# A static library from every .cpp of the current folder (and of the listed
# subfolders) but the excluded ones. Its include root is src/, so sources
# write #include "platform/d3d9/d3d9.h" or "view/Camera.h".
function(karvo_library name)
  cmake_parse_arguments(ARG "" "" "LINKS;PRIVATE_LINKS;EXCLUDE;FOLDERS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*.cpp)
  foreach(folder IN LISTS ARG_FOLDERS)
    file(GLOB more CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp)
    list(APPEND sources ${more})
  endforeach()
  foreach(excluded IN LISTS ARG_EXCLUDE)
    list(REMOVE_ITEM sources ${CMAKE_CURRENT_SOURCE_DIR}/${excluded})
  endforeach()
  add_library(${name} STATIC ${sources})
  target_include_directories(${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(${name} PUBLIC ${ARG_LINKS} PRIVATE ${ARG_PRIVATE_LINKS})
endfunction()

# karvo_test(NAME SOURCES <files...> LINKS <targets...> [LABELS <labels...>])
# A GoogleTest executable registered with ctest. Tests that need a display
# carry the label "display"; ./test.sh runs the whole suite under Xvfb.
function(karvo_test name)
  cmake_parse_arguments(ARG "" "WORKING_DIRECTORY" "SOURCES;LINKS;LABELS" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_include_directories(${name} PRIVATE ${PROJECT_SOURCE_DIR}/src ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name} PRIVATE ${ARG_LINKS} GTest::gtest GTest::gtest_main)
  if(NOT ARG_WORKING_DIRECTORY)
    set(ARG_WORKING_DIRECTORY ${CMAKE_CURRENT_BINARY_DIR})
  endif()
  add_test(NAME ${name} COMMAND ${name} WORKING_DIRECTORY ${ARG_WORKING_DIRECTORY})
  if(ARG_LABELS)
    set_tests_properties(${name} PROPERTIES LABELS "${ARG_LABELS}")
  endif()
endfunction()
