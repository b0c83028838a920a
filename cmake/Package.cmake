# The target `package`, and cpack in the build folder: a Debian package of what cmake --install puts
# in its places. What the programs link is found in them; what they load is named here.
set(CPACK_GENERATOR DEB)
set(CPACK_SOURCE_GENERATOR "")
set(CPACK_PACKAGE_NAME tarvo)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "stand-in host that runs and checks the Tarvo overlaps manager")
set(CPACK_PACKAGE_DESCRIPTION
  "The Tarvo overlaps manager is an effect plug-in for Adobe After Effects that
puts the pieces of a cut-out character, bent with bones, in the right order.
.
The command tarvo loads a build of the plug-in without the real host. It
renders rigs described in JSON into pictures, animations and movies, explains
the order of the pieces, and checks a build against its requirements. A screen
is not needed.
.
The package holds the command, the Linux build of the plug-in, examples, and
the C header and CMake package for makers of companion effects.")
set(CPACK_STRIP_FILES ON)
# Whatever the umask of the person who builds.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
# The format asks for an address; this one is of a domain that is reserved for having none.
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "The Tarvo overlaps manager authors <authors@tarvo.invalid>")
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# EGL without a screen is an extension of Mesa, and EGL loads Mesa's drivers.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libegl-mesa0, libgl1-mesa-dri")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS ffmpeg)  # which makes movies

set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/DebianTree.cmake)
set(CPACK_TARVO_PACKAGING_FOLDER ${PROJECT_SOURCE_DIR}/packaging)
set(CPACK_TARVO_DOC_FOLDER usr/${CMAKE_INSTALL_DATAROOTDIR}/doc/tarvo)
set(CPACK_TARVO_MAN_FOLDER usr/${CMAKE_INSTALL_MANDIR})
include(CPack)
