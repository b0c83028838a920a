#include <gtest/gtest.h>

#include "check/support/plugin_under_check.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  check::UsePlugin(TARVO_PLUGIN_FILE);
  return RUN_ALL_TESTS();
}
