#include "standin/scene_faults.h"

#include <algorithm>
#include <cctype>
#include <numeric>

namespace standin {
namespace {

bool IsPlainWord(std::string_view key) {
  return !key.empty() && std::ranges::all_of(key, [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '_' || letter == '-';
  });
}

/// Single characters to insert, remove or replace (Levenshtein).
std::size_t EditDistance(std::string_view from, std::string_view to) {
  std::vector<std::size_t> row(to.size());  // to each start of `to` but the empty one
  std::iota(row.begin(), row.end(), std::size_t{1});
  for (std::size_t i = 0; i < from.size(); ++i) {
    std::size_t diagonal = i;
    std::size_t left = i + 1;
    for (std::size_t j = 0; j < to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i] == to[j] ? 0 : 1);
      diagonal = row[j];
      left = row[j] = std::min({replaced, left + 1, diagonal + 1});
    }
  }
  return row.empty() ? from.size() : row.back();
}

}  // namespace

void SceneFaults::Add(std::string_view place, std::string_view message) {
  std::string line = fileName_;
  for (const std::string_view part : {place, message}) {
    if (!part.empty()) {
      line.append(": ").append(part);
    }
  }
  lines_.push_back(std::move(line));
}

InputError::InputError(std::vector<std::string> faultLines)
    : std::runtime_error(faultLines.empty() ? "" : faultLines.front()),
      lines_(std::move(faultLines)) {}

std::string PathTo(std::string_view object, std::string_view key) {
  std::string path(object);
  if (!IsPlainWord(key)) {
    return path.append("[\"").append(key).append("\"]");
  }
  return path.append(path.empty() ? "" : ".").append(key);
}

std::string PathTo(std::string_view list, std::size_t index) {
  return std::string(list).append("[").append(std::to_string(index)).append("]");
}

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
  const auto nearest = std::ranges::min_element(
      candidates, {}, [&](const std::string& candidate) { return EditDistance(candidate, word); });
  return nearest == candidates.end() ? std::string() : *nearest;
}

std::string NearestHint(std::string_view word, const std::vector<std::string>& candidates) {
  return candidates.empty() ? "" : ", the nearest is \"" + Nearest(word, candidates) + "\"";
}

}  // namespace standin
