#include "check/result/result.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>

#include <nlohmann/json.hpp>

namespace check {
namespace {

constexpr std::array<const char*, 5> kVerdicts = {"passed", "failed", "skipped", "crashed",
                                                  "timed out"};

Verdict VerdictNamed(const std::string& name) {
  const auto* const found = std::ranges::find(kVerdicts, name);
  if (found == kVerdicts.end()) {
    throw std::invalid_argument("no verdict: " + name);
  }
  return static_cast<Verdict>(found - kVerdicts.begin());
}

}  // namespace

std::string Name(Verdict verdict) { return kVerdicts.at(static_cast<std::size_t>(verdict)); }

bool IsBad(Verdict verdict) { return verdict != Verdict::kPassed && verdict != Verdict::kSkipped; }

nlohmann::ordered_json ToJson(const Result& result) {
  nlohmann::ordered_json figures = nlohmann::ordered_json::object();
  for (const auto& [key, value] : result.figures) {
    figures[key] = value;
  }
  return {{"name", result.name},
          {"requirement", result.requirement},
          {"result", Name(result.verdict)},
          {"seconds", result.seconds},
          {"messages", result.messages},
          {"figures", figures}};
}

Result ResultFrom(const nlohmann::ordered_json& json) {
  Result result{.name = json.at("name"),
                .requirement = json.at("requirement"),
                .verdict = VerdictNamed(json.at("result")),
                .seconds = json.at("seconds"),
                .messages = json.at("messages"),
                .figures = {}};
  for (const auto& [key, value] : json.at("figures").items()) {
    result.figures.emplace_back(key, value.get<std::string>());
  }
  return result;
}

}  // namespace check
