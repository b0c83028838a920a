#include <gtest/gtest.h>

#include "check/support/plugin_under_check.h"
#include "plugin/entry/entry_point.h"

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  check::UseEntryPoint(EntryPointFunc);
  return RUN_ALL_TESTS();
}
