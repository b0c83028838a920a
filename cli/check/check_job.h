#pragma once

#include <string>
#include <vector>

#include "check/result/selection.h"
#include "cli/check/check_options.h"

namespace tarvo {

/// What the check worker is to do with the plug-in that its command line names: file names may hold
/// bytes that JSON does not take.
struct CheckJob {
  bool lists = false;               ///< lists the checks and does nothing else
  std::vector<std::string> checks;  ///< names; none: the plug-in is loaded and that is all
  unsigned seed = check::kUsualSeed;
  bool isLong = false;
  bool trace = false;
};

/// To run these checks as the options say.
CheckJob JobFor(const CheckOptions& options, std::vector<std::string> checks);

/// A job as it is sent to the worker, and as it is read there. Throws nlohmann::json::exception
/// for a text that is none.
std::string JobText(const CheckJob& job);
CheckJob CheckJobFrom(const std::string& text);

}  // namespace tarvo
