#include "check/run.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "check/support/promise.h"

namespace check {
namespace {

using testing::TestInfo;
using testing::TestPartResult;
using testing::UnitTest;

std::string FullName(const TestInfo& info) {
  return std::string(info.test_suite_name()) + "." + info.name();
}

/// Only the last star is ever extended: what an earlier one takes can do without more. The time is
/// that of name times pattern at most.
bool Fits(std::string_view name, std::string_view pattern) {
  std::size_t read = 0;   // of the name
  std::size_t given = 0;  // of the pattern
  std::size_t afterStar = std::string_view::npos;
  std::size_t starEnd = 0;  // of what the star takes of the name
  while (read < name.size()) {
    if (given < pattern.size() && pattern[given] == '*') {
      afterStar = ++given;
      starEnd = read;
    } else if (given < pattern.size() && (pattern[given] == '?' || pattern[given] == name[read])) {
      ++given;
      ++read;
    } else if (afterStar != std::string_view::npos) {
      given = afterStar;
      read = ++starEnd;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', given) == std::string_view::npos;
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
  if (part.skipped() || part.file_name() == nullptr) return part.message();
  return std::string(part.file_name()) + ":" + std::to_string(part.line_number()) + ": " +
         part.message();
}

Verdict VerdictOf(const testing::TestResult& result) {
  if (result.Failed()) return Verdict::kFailed;
  return result.Skipped() ? Verdict::kSkipped : Verdict::kPassed;
}

Result ResultOf(const TestInfo& info) {
  constexpr double kMilliseconds = 1000;
  const testing::TestResult& outcome = *info.result();
  Result result{.name = FullName(info),
                .promise = PromiseOf(FullName(info)),
                .verdict = VerdictOf(outcome),
                .seconds = static_cast<double>(outcome.elapsed_time()) / kMilliseconds,
                .messages = {},
                .figures = {}};
  for (int i = 0; i < outcome.total_part_count(); ++i) {
    const TestPartResult& part = outcome.GetTestPartResult(i);
    if (!part.passed()) result.messages.push_back(MessageOf(part));
  }
  for (int i = 0; i < outcome.test_property_count(); ++i) {
    const testing::TestProperty& property = outcome.GetTestProperty(i);
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

std::vector<Check> ChecksNamed(const std::vector<std::string>& patterns) {
  PrepareOnce();
  std::vector<Check> checks;
  const UnitTest& all = *UnitTest::GetInstance();
  for (int s = 0; s < all.total_test_suite_count(); ++s) {
    const testing::TestSuite& suite = *all.GetTestSuite(s);
    for (int t = 0; t < suite.total_test_count(); ++t) {
      const std::string name = FullName(*suite.GetTestInfo(t));
      const bool isWanted =
          patterns.empty() || std::ranges::any_of(patterns, [&](const std::string& pattern) {
            return Fits(name, pattern);
          });
      if (isWanted) checks.push_back({name, PromiseOf(name)});
    }
  }
  std::ranges::sort(checks, {}, &Check::name);
  return checks;
}

std::vector<Check> Shuffled(std::vector<Check> checks, unsigned seed) {
  std::mt19937 lots(seed);
  // Not std::shuffle, whose order differs from library to library.
  for (std::size_t left = checks.size(); left > 1; --left) {
    std::swap(checks[left - 1], checks[lots() % left]);
  }
  return checks;
}

void RunHere(const std::vector<Check>& checks, const std::function<void(const Result&)>& take) {
  PrepareOnce();
  testing::TestEventListeners& listeners = UnitTest::GetInstance()->listeners();
  delete listeners.Release(listeners.default_result_printer());
  listeners.Append(std::make_unique<HandOver>(take).release());  // GoogleTest's from now on
  for (const Check& check : checks) {  // one at a time: GoogleTest has an order of its own
    testing::GTEST_FLAG(filter) = check.name;
    [[maybe_unused]] const int failed = RUN_ALL_TESTS();  // its result has been told
  }
}

}  // namespace check
