#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "base/files/input_error.h"

namespace tarvo {

/// A JSON value; objects keep the order of the file.
using Json = nlohmann::ordered_json;

/// Most lists and objects inside one another. A scene needs 9 of them; the library copies and
/// destroys values with a call for each.
inline constexpr std::size_t kDeepestNesting = 64;

/// Longest key or text of a scene, in bytes.
inline constexpr std::size_t kLongestText = 4096;

/// Reads JSON text. A syntax error, a number too large for a double, a zero byte and nesting beyond
/// kDeepestNesting are faults at their line and column (both from 1, columns in bytes) and give
/// nothing; a key given twice is a fault at its path, and its last value counts; so is a key or
/// text longer than kLongestText. The time is linear in the text.
std::optional<Json> ParseJson(const std::string& text, SceneFaults& faults);

}  // namespace tarvo
