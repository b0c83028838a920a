# The header-only libraries of the stand-in host, as the target tarvo_header_libraries. Debian puts
# them among the headers of its own machines, which must not be seen when compiling for Windows: there
# a folder of links shows these libraries and nothing else.
add_library(tarvo_header_libraries INTERFACE)
if(CMAKE_CROSSCOMPILING)
  set(links ${PROJECT_BINARY_DIR}/header-libraries)
  file(MAKE_DIRECTORY ${links})
  foreach(header nlohmann/json.hpp CLI/CLI.hpp stb/stb_image.h)
    cmake_path(GET header PARENT_PATH folder)
    find_path(TARVO_HAS_${folder} ${header} PATHS /usr/include REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    file(CREATE_LINK ${TARVO_HAS_${folder}}/${folder} ${links}/${folder} SYMBOLIC)
  endforeach()
  target_include_directories(tarvo_header_libraries SYSTEM INTERFACE ${links})
endif()
