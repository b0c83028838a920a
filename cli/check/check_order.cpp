#include "cli/check/check_order.h"

#include <utility>

#include <nlohmann/json.hpp>

namespace tarvo {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE(CheckOrder, lists, checks, seed, isLong, trace)

CheckOrder OrderOf(const CheckOptions& options, std::vector<std::string> checks) {
  return {.checks = std::move(checks),
          .seed = options.seed.value_or(check::kUsualSeed),
          .isLong = options.isLong,
          .trace = options.trace};
}

std::string OrderText(const CheckOrder& order) { return nlohmann::json(order).dump(); }

CheckOrder CheckOrderFrom(const std::string& text) {
  return nlohmann::json::parse(text).get<CheckOrder>();
}

}  // namespace tarvo
