#include <vector>

#include <gtest/gtest.h>

#include "check/run.h"

namespace {

/// Without the tests of this file, which are among GoogleTest's cases too.
std::vector<check::Check> Checks() {
  std::vector<check::Check> checks = check::AllChecks();
  std::erase_if(checks,
                [](const auto& each) { return each.name.starts_with("RequirementsTest."); });
  return checks;
}

TEST(RequirementsTest, EveryCheckHasOneSentence) {
  for (const check::Check& check : Checks()) {
    EXPECT_TRUE(check.requirement.ends_with('.')) << check.name << ": " << check.requirement;
  }
}

}  // namespace
