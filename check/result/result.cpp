#include "check/result/result.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace check {
namespace {

constexpr std::array<const char*, 5> kOutcomes = {"passed", "failed", "skipped", "crashed",
                                                  "timed out"};

Outcome OutcomeNamed(const std::string& name) {
  const auto* const found = std::ranges::find(kOutcomes, name);
  if (found == kOutcomes.end()) {
    throw std::invalid_argument("no verdict: " + name);
  }
  return static_cast<Outcome>(found - kOutcomes.begin());
}

}  // namespace

std::string Name(Outcome outcome) { return kOutcomes.at(static_cast<std::size_t>(outcome)); }

bool IsBad(Outcome outcome) { return outcome != Outcome::kPassed && outcome != Outcome::kSkipped; }

nlohmann::ordered_json ToJson(const Result& result) {
  nlohmann::ordered_json figures = nlohmann::ordered_json::object();
  for (const auto& [key, value] : result.figures) {
    figures[key] = value;
  }
  return {{"name", result.name},
          {"requirement", result.requirement},
          {"result", Name(result.outcome)},
          {"seconds", result.seconds},
          {"messages", result.messages},
          {"figures", figures}};
}

Result ResultFrom(const nlohmann::ordered_json& json) {
  Result result{.name = json.at("name"),
                .requirement = json.at("requirement"),
                .outcome = OutcomeNamed(json.at("result")),
                .seconds = json.at("seconds"),
                .messages = json.at("messages"),
                .figures = {}};
  for (const auto& [key, value] : json.at("figures").items()) {
    result.figures.emplace_back(key, value.get<std::string>());
  }
  return result;
}

}  // namespace check
