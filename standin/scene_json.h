#pragma once

#include <optional>
#include <string>

#include <nlohmann/json.hpp>

#include "standin/scene_faults.h"

namespace standin {

/// A JSON value; objects keep the order of the file.
using Json = nlohmann::ordered_json;

/// Reads JSON text. A syntax error or a number too large for a double is a fault at its line and
/// column (both from 1, columns in bytes) and gives nothing; a key given twice is a fault at its
/// path, and its last value counts.
std::optional<Json> ParseJson(const std::string& text, SceneFaults& faults);

}  // namespace standin
