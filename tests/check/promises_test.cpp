#include <gtest/gtest.h>

#include "check/run.h"

namespace {

TEST(PromisesTest, EveryCheckHasOne) {
  for (const check::Check& check : check::ChecksNamed()) {
    if (check.name.starts_with("PromisesTest.")) continue;
    EXPECT_TRUE(check.promise.ends_with('.')) << check.name << ": " << check.promise;
  }
}

}  // namespace
