#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json_fwd.hpp>

namespace check {

/// A check, as people choose it.
struct Check {
  std::string name;
  std::string requirement;
};

/// The seed of everything random unless another is given.
inline constexpr std::uint32_t kUsualSeed = 1;

/// Those whose name fits one of the patterns, in which * matches any letters and ? one; all
/// of them without a pattern.
std::vector<Check> Matching(std::vector<Check> checks, const std::vector<std::string>& patterns);

/// The checks shuffled by a seed: the same seed, the same order.
std::vector<Check> Shuffled(std::vector<Check> checks, unsigned seed);

nlohmann::ordered_json ToJson(const std::vector<Check>& checks);
/// Reads what ToJson made. Throws nlohmann::json::exception for anything else.
std::vector<Check> ChecksFrom(const nlohmann::ordered_json& json);

}  // namespace check
