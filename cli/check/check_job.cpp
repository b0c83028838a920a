#include "cli/check/check_job.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace tarvo {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(CheckJob, lists, checks, seed, isLong, trace)

CheckJob JobFor(const CheckOptions& options, std::vector<std::string> checks) {
  return {.checks = std::move(checks),
          .seed = options.seed.value_or(check::kUsualSeed),
          .isLong = options.isLong,
          .trace = options.trace};
}

std::string JobText(const CheckJob& job) { return nlohmann::json(job).dump(); }

CheckJob CheckJobFrom(const std::string& text) {
  return nlohmann::json::parse(text).get<CheckJob>();
}

}  // namespace tarvo
