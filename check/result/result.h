#pragma once

#include <string>
#include <utility>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace check {

/// How a check ended. Crashed and timed out are determined outside its process. (The verdict is
/// that on the build.)
enum class Outcome { kPassed, kFailed, kSkipped, kCrashed, kTimedOut };

struct Result {
  std::string name;
  std::string requirement;
  Outcome outcome = Outcome::kPassed;
  double seconds = 0;
  /// What was expected and what came, with the place in the sources; or why it was skipped, or how
  /// the process ended.
  std::vector<std::string> messages;
  /// What the case counted and measured, in its order.
  std::vector<std::pair<std::string, std::string>> figures;
};

/// "passed", "failed", "skipped", "crashed", "timed out".
std::string Name(Outcome outcome);
/// True iff the build is at fault.
bool IsBad(Outcome outcome);

nlohmann::ordered_json ToJson(const Result& result);
/// Reads what ToJson made. Throws nlohmann::json::exception for anything else.
Result ResultFrom(const nlohmann::ordered_json& json);

}  // namespace check
