#include "check/run.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <gtest/gtest.h>

#include "check/support/requirement.h"

namespace check {
namespace {

using testing::TestInfo;
using testing::TestPartResult;
using testing::UnitTest;

std::string FullName(const TestInfo& info) {
  return std::string(info.test_suite_name()) + "." + info.name();
}

/// Makes GoogleTest's cases, those of its tables too.
void PrepareOnce() {
  static const bool kPrepared = [] {
    std::string program = "tarvo";
    char* words[] = {program.data(), nullptr};
    int count = 1;
    testing::InitGoogleTest(&count, words);
    return true;
  }();
  static_cast<void>(kPrepared);
}

/// "check/extent_checks.cpp:42: Expected equality of …"
std::string MessageOf(const TestPartResult& part) {
  if (part.skipped() || part.file_name() == nullptr) {
    return part.message();
  }
  return std::string(part.file_name()) + ":" + std::to_string(part.line_number()) + ": " +
         part.message();
}

Outcome OutcomeOf(const testing::TestResult& result) {
  if (result.Failed()) {
    return Outcome::kFailed;
  }
  return result.Skipped() ? Outcome::kSkipped : Outcome::kPassed;
}

Result ResultOf(const TestInfo& info) {
  constexpr double kMilliseconds = 1000;
  const testing::TestResult& testResult = *info.result();
  Result result{.name = FullName(info),
                .requirement = RequirementOf(FullName(info)),
                .outcome = OutcomeOf(testResult),
                .seconds = static_cast<double>(testResult.elapsed_time()) / kMilliseconds,
                .messages = {},
                .figures = {}};
  for (int i = 0; i < testResult.total_part_count(); ++i) {
    const TestPartResult& part = testResult.GetTestPartResult(i);
    if (!part.passed()) {
      result.messages.push_back(MessageOf(part));
    }
  }
  for (int i = 0; i < testResult.test_property_count(); ++i) {
    const testing::TestProperty& property = testResult.GetTestProperty(i);
    result.figures.emplace_back(property.key(), property.value());
  }
  return result;
}

class HandOver : public testing::EmptyTestEventListener {
 public:
  explicit HandOver(std::function<void(const Result&)> take) : take_(std::move(take)) {}

  void OnTestEnd(const TestInfo& info) override { take_(ResultOf(info)); }

 private:
  std::function<void(const Result&)> take_;
};

}  // namespace

std::vector<Check> AllChecks() {
  PrepareOnce();
  std::vector<Check> checks;
  const UnitTest& all = *UnitTest::GetInstance();
  for (int s = 0; s < all.total_test_suite_count(); ++s) {
    const testing::TestSuite& suite = *all.GetTestSuite(s);
    for (int t = 0; t < suite.total_test_count(); ++t) {
      const std::string name = FullName(*suite.GetTestInfo(t));
      checks.push_back({name, RequirementOf(name)});
    }
  }
  std::ranges::sort(checks, {}, &Check::name);
  return checks;
}

void RunHere(const std::vector<Check>& checks, const std::function<void(const Result&)>& take) {
  PrepareOnce();
  testing::TestEventListeners& listeners = UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(std::make_unique<HandOver>(take).release());  // GoogleTest's from now on
  for (const Check& check : checks) {  // one at a time: GoogleTest has an order of its own
    testing::GTEST_FLAG(filter) = check.name;
    [[maybe_unused]] const int failed = RUN_ALL_TESTS();  // its result has been passed on
  }
}

}  // namespace check
