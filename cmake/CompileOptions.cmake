# One interface target holds what every file of ours is compiled with; linking `tarvo_options` is how
# a folder takes part.
add_library(tarvo_options INTERFACE)
target_compile_features(tarvo_options INTERFACE cxx_std_20)
target_include_directories(tarvo_options INTERFACE ${PROJECT_SOURCE_DIR} ${PROJECT_SOURCE_DIR}/include)
target_compile_options(tarvo_options INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Wsign-conversion -Wold-style-cast
  -Wnon-virtual-dtor -Woverloaded-virtual -Wimplicit-fallthrough
  -Wno-missing-field-initializers)  # a designated initializer names what differs from the default
if(TARVO_WERROR)
  target_compile_options(tarvo_options INTERFACE -Werror)
endif()
# No path of the building machine in a binary. The build folder may lie in the source folder, and the
# last map that fits is the one that counts.
target_compile_options(tarvo_options INTERFACE
  -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= -ffile-prefix-map=${PROJECT_BINARY_DIR}=.)
# The bytes of a picture must not depend on the processor: no fused multiply-add behind our back.
target_compile_options(tarvo_options INTERFACE -ffp-contract=off)

option(TARVO_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
if(TARVO_SANITIZE)
  target_compile_options(tarvo_options INTERFACE
    -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(tarvo_options INTERFACE -fsanitize=address,undefined)
endif()

option(TARVO_FUZZ "Build what scripts/fuzz runs (clang)" OFF)
if(TARVO_FUZZ)  # counts what is covered; undefined conversions from floating point are found too
  target_compile_options(tarvo_options INTERFACE -fsanitize=fuzzer-no-link,float-cast-overflow)
endif()

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/bin)

# For the sources of this folder and those below it, in which no time is spent: compiled in two thirds
# of the time. Not in builds for a debugger, which are not optimised anyway.
macro(optimise_little)
  add_compile_options($<$<NOT:$<CONFIG:Debug>>:-O1> $<$<CONFIG:RelWithDebInfo>:-g1>)
endmacro()

# Compiles a target's sources in groups of so many, unless a preset says how many: where large
# headers of libraries take most of the time, or would be compiled over and over.
function(join_sources target size)
  if(NOT DEFINED CMAKE_UNITY_BUILD_BATCH_SIZE)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ON UNITY_BUILD_BATCH_SIZE ${size})
  endif()
endfunction()
