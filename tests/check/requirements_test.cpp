#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/files/whole_file.h"
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

TEST(RequirementsTest, AreListedOnThePageAboutChecking) {
  std::string list;
  std::string latest;
  for (const check::Check& check : Checks()) {
    const std::string name = check.name.substr(0, check.name.find('/'));
    if (name != latest) {
      list += "- `" + name + "`: " + check.requirement + "\n";
    }
    latest = name;
  }
  const std::string page = tarvo::ReadWholeFile(TARVO_PAGE);
  EXPECT_NE(page.find("## The requirements\n\n" + list + "\n#"), std::string::npos)
      << TARVO_PAGE << " must list them so:\n"
      << list;
}

}  // namespace
