#pragma once

#include <iosfwd>
#include <string>
#include <utility>
#include <vector>

#include "check/result/result.h"
#include "cli/process/console.h"

namespace tarvo {

/// The results of a run and what is said of them.
class CheckReport {
 public:
  /// Every result is written as text to `out` as soon as it is there, unless `json` asks for all of
  /// it at the end.
  CheckReport(std::string plugin, unsigned seed, bool json, const Console& console)
      : plugin_(std::move(plugin)), seed_(seed), json_(json), console_(console) {}

  void Take(const check::Result& result);
  /// The build cannot be loaded: there are no results, but a verdict.
  void TakeNotLoaded(const std::string& why) { notLoaded_ = "cannot be loaded: " + why; }

  /// Says what it comes to: "conformant: 97 checks passed, 2 skipped"; the exit code that agrees. A
  /// run in which nothing passed does not call a build conformant.
  [[nodiscard]] int End() const;
  /// The results in JUnit's form.
  [[nodiscard]] std::string JUnit() const;

 private:
  [[nodiscard]] std::size_t Count(check::Outcome outcome) const;
  [[nodiscard]] bool IsConformant() const;
  [[nodiscard]] std::string Verdict() const;
  [[nodiscard]] std::string Json() const;

  std::string plugin_;
  unsigned seed_;
  bool json_;
  const Console& console_;
  std::vector<check::Result> results_;
  std::string notLoaded_;  ///< the verdict, if it is that
};

}  // namespace tarvo
