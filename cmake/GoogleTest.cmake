# GoogleTest as the GTest::gtest and GTest::gtest_main targets; without it the checks are left out,
# unless tests are asked for. Debian installs a library for its own
# machines only; for Windows the sources that its package googletest brings are compiled.
if(NOT CMAKE_CROSSCOMPILING)
  set(required)
  if(BUILD_TESTING)
    set(required REQUIRED)
  endif()
  find_package(GTest ${required})
else()
  find_path(TARVO_GTEST_SOURCE googletest/CMakeLists.txt
    PATHS /usr/src/googletest REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  set(BUILD_GMOCK OFF)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${TARVO_GTEST_SOURCE} ${PROJECT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
  if(NOT TARGET GTest::gtest)  # GoogleTest before 1.13
    add_library(GTest::gtest ALIAS gtest)
    add_library(GTest::gtest_main ALIAS gtest_main)
  endif()
endif()
include(GoogleTest)
if(NOT TARGET GTest::gtest)
  message(STATUS "GoogleTest was not found: tarvo-check-worker, which `tarvo check` needs, is not built")
endif()
