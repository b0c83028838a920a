# The API documentation, where Doxygen is installed: `cmake --build --preset linux --target api-docs`
# writes it to api-docs/html in the build folder, and fails on a warning.
find_program(TARVO_DOXYGEN doxygen)
mark_as_advanced(TARVO_DOXYGEN)
if(TARVO_DOXYGEN)
  configure_file(cmake/Doxyfile.in ${PROJECT_BINARY_DIR}/Doxyfile @ONLY)
  add_custom_target(api-docs COMMAND ${TARVO_DOXYGEN} ${PROJECT_BINARY_DIR}/Doxyfile
    WORKING_DIRECTORY ${PROJECT_BINARY_DIR} VERBATIM)
else()
  message(STATUS "No Doxygen: there is no target api-docs")
endif()
