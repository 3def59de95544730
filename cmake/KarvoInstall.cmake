# Installation and the Debian package.
#
#   bin/karvo-terrain                      launcher: changes into the assets, starts the program
#   lib/karvo-terrain/karvo-terrain        the program
#   share/karvo-terrain/                   Data/, music/, speech/mp3/
#   share/applications/karvo-terrain.desktop
#   share/icons/hicolor/<N>x<N>/apps/karvo-terrain.png
#
# The program itself stays as it is (assets from the working directory); the
# launcher gives it that directory.
# Installing (and cpack) takes what the build made and builds nothing itself:
# otherwise it would first build every test and benchmark.
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON)

set(KARVO_INSTALL_PROGRAM_DIR lib/karvo-terrain)
set(KARVO_INSTALL_ASSET_DIR share/karvo-terrain)

if(TARGET karvo-terrain)
  install(TARGETS karvo-terrain RUNTIME DESTINATION ${KARVO_INSTALL_PROGRAM_DIR})
endif()
if(TARGET karvo_assets)
  foreach(folder Data music speech)
    install(DIRECTORY ${KARVO_ASSET_DIR}/${folder} DESTINATION ${KARVO_INSTALL_ASSET_DIR})
  endforeach()
endif()
if(TARGET karvo_icons)
  install(DIRECTORY ${KARVO_ICON_DIR}/ DESTINATION share/icons/hicolor)
endif()

set(KARVO_LAUNCHER_TO_ASSETS ../${KARVO_INSTALL_ASSET_DIR})
set(KARVO_LAUNCHER_TO_PROGRAM ../${KARVO_INSTALL_PROGRAM_DIR}/karvo-terrain)
configure_file(${PROJECT_SOURCE_DIR}/packaging/karvo-terrain.in ${CMAKE_BINARY_DIR}/launcher/karvo-terrain @ONLY)
install(PROGRAMS ${CMAKE_BINARY_DIR}/launcher/karvo-terrain DESTINATION bin)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/karvo-terrain.desktop DESTINATION share/applications)

# cpack -G DEB: the dependencies come from the libraries the program links
# (dpkg-shlibdeps), not from a list kept by hand.
set(CPACK_PACKAGE_NAME karvo-terrain)
set(CPACK_PACKAGE_VERSION 1.0.0)
set(CPACK_PACKAGE_VENDOR "Karvo Terrain")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Real-time walk through a height-map landscape")
set(CPACK_PACKAGE_DESCRIPTION
    "A height-map terrain with a sea, towers, trees, rain and flying figures, seen through three cameras that follow a walker under gravity, with sounds by where the walker is and what it does.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Karvo Terrain developers <karvo-terrain@localhost>")
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_STRIP_FILES ON)
include(CPack)
