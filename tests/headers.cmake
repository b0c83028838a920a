# Every header stands alone. One with a source file of its own is the first that this includes;
# for each of the others, a generated file that includes nothing else is compiled.
set(standalone_sources)
foreach(folder sdk platform plugin include base standin tool check cli tests bench)
  file(GLOB_RECURSE headers CONFIGURE_DEPENDS
    RELATIVE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/${folder}/*.h)
  list(FILTER headers EXCLUDE REGEX "/windows/")
  foreach(header IN LISTS headers)
    cmake_path(REPLACE_EXTENSION header LAST_ONLY .cpp OUTPUT_VARIABLE own_source)
    if(EXISTS ${PROJECT_SOURCE_DIR}/${own_source})
      continue()
    endif()
    set(source ${CMAKE_CURRENT_BINARY_DIR}/headers/${header}.cpp)
    file(CONFIGURE OUTPUT ${source} CONTENT "#include \"${header}\"\n")
    list(APPEND standalone_sources ${source})
  endforeach()
endforeach()
add_library(tarvo_headers OBJECT ${standalone_sources})
set_target_properties(tarvo_headers PROPERTIES UNITY_BUILD OFF)
target_link_libraries(tarvo_headers PRIVATE
  tarvo_plugin_core tarvo_checks tarvo_cli_frames)

# What makers of companions include is C as well.
set(companion_in_c ${CMAKE_CURRENT_BINARY_DIR}/headers/companion.c)
file(CONFIGURE OUTPUT ${companion_in_c} CONTENT "#include \"tarvo/companion.h\"\n")
add_library(tarvo_companion_in_c OBJECT ${companion_in_c})
target_include_directories(tarvo_companion_in_c PRIVATE ${PROJECT_SOURCE_DIR}/include)
target_compile_options(tarvo_companion_in_c PRIVATE -std=c11 -Wall -Wextra -Wpedantic -Werror)
