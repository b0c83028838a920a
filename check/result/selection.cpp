#include "check/result/selection.h"

#include <algorithm>
#include <cstddef>
#include <random>
#include <string_view>
#include <utility>

#include <nlohmann/json.hpp>

namespace check {
namespace {

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

}  // namespace

std::vector<Check> Matching(std::vector<Check> checks, const std::vector<std::string>& patterns) {
  if (!patterns.empty()) {
    std::erase_if(checks, [&](const Check& check) {
      return std::ranges::none_of(
          patterns, [&](const std::string& pattern) { return Fits(check.name, pattern); });
    });
  }
  return checks;
}

std::vector<Check> Shuffled(std::vector<Check> checks, unsigned seed) {
  std::mt19937 random(seed);
  // Not std::shuffle, whose order differs from library to library.
  for (std::size_t left = checks.size(); left > 1; --left) {
    std::swap(checks[left - 1], checks[random() % left]);
  }
  return checks;
}

nlohmann::ordered_json ToJson(const std::vector<Check>& checks) {
  auto json = nlohmann::ordered_json::array();
  for (const Check& check : checks) {
    json.push_back({{"name", check.name}, {"requirement", check.requirement}});
  }
  return json;
}

std::vector<Check> ChecksFrom(const nlohmann::ordered_json& json) {
  std::vector<Check> checks;
  for (const auto& check : json) {
    checks.push_back({check.at("name"), check.at("requirement")});
  }
  return checks;
}

}  // namespace check
