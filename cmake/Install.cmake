# cmake --install: tarvo with what it looks for beside itself, and what makers of companions include.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# In a folder of their own; the command that people type is a link into it, which tarvo follows.
set(own_folder ${CMAKE_INSTALL_LIBDIR}/tarvo)
install(TARGETS tarvo RUNTIME DESTINATION ${own_folder})
install(TARGETS tarvo_plugin LIBRARY DESTINATION ${own_folder})
if(TARGET tarvo_check_worker)
  install(TARGETS tarvo_check_worker RUNTIME DESTINATION ${own_folder})
endif()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/install)
file(RELATIVE_PATH link_target ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR}/tarvo/tarvo)
file(CREATE_LINK ${link_target} ${PROJECT_BINARY_DIR}/install/tarvo SYMBOLIC)
install(FILES ${PROJECT_BINARY_DIR}/install/tarvo DESTINATION ${CMAKE_INSTALL_BINDIR})

# find_package(tarvo-companion) gives the target tarvo::companion.
add_library(tarvo_companion_header INTERFACE)
set_target_properties(tarvo_companion_header PROPERTIES EXPORT_NAME companion)
target_include_directories(tarvo_companion_header INTERFACE
  $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tarvo-companion)
install(FILES ${PROJECT_SOURCE_DIR}/include/tarvo/companion.h
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tarvo)
install(TARGETS tarvo_companion_header EXPORT tarvo-companion)
install(EXPORT tarvo-companion NAMESPACE tarvo:: FILE tarvo-companion-config.cmake
  DESTINATION ${package_folder})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/install/tarvo-companion-config-version.cmake
  COMPATIBILITY SameMajorVersion ARCH_INDEPENDENT)
install(FILES ${PROJECT_BINARY_DIR}/install/tarvo-companion-config-version.cmake
  DESTINATION ${package_folder})

# Pages for man, and completion scripts where bash, zsh and fish look for them. They, and the page of
# requirements, are left out where only `tarvo` was built, as scripts/demo does.
if(TARGET tarvo_manual_pages)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/cli/manual/share/man/ DESTINATION ${CMAKE_INSTALL_MANDIR}
    OPTIONAL)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/cli/manual/share/ DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}
    OPTIONAL PATTERN man EXCLUDE)
endif()

set(doc_folder ${CMAKE_INSTALL_DATAROOTDIR}/doc/tarvo)
install(FILES LICENSE CHANGELOG.md DESTINATION ${doc_folder})
install(DIRECTORY docs/ DESTINATION ${doc_folder})
if(TARGET tarvo_requirements)
  install(FILES ${PROJECT_BINARY_DIR}/check/requirements.md DESTINATION ${doc_folder}
    OPTIONAL)
endif()
install(DIRECTORY examples DESTINATION ${doc_folder} PATTERN CMakeLists.txt EXCLUDE
  PATTERN broken EXCLUDE)  # scenes with one fault each, for tests
