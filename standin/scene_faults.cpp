#include "standin/scene_faults.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <numeric>
#include <utility>

#include "standin/escaped_text.h"

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

std::string MoreLines(std::size_t count) { return "and " + std::to_string(count) + " more"; }

void FaultLines::Add(std::string_view line) {
  ++count_;
  if (count_ <= kMostFaultLines) {
    lines_.push_back(ForTerminal(line));
    return;
  }
  lines_.resize(kMostFaultLines + 1);
  lines_.back() = MoreLines(count_ - kMostFaultLines);
}

void SceneFaults::Add(std::string_view place, std::string_view message) {
  std::string line = fileName_;
  for (const std::string_view part : {place, message}) {
    if (!part.empty()) {
      line.append(": ").append(part);
    }
  }
  lines_.Add(line);
}

InputError::InputError(std::vector<std::string> faultLines)
    : std::runtime_error(faultLines.empty() ? "" : faultLines.front()),
      lines_(std::move(faultLines)) {}

std::string PathTo(std::string_view object, std::string_view key) {
  constexpr std::size_t kLongestKey = 256;
  std::string path(object);
  const std::string shown = Shortened(key, kLongestKey);
  if (!IsPlainWord(shown)) {
    return path.append("[\"").append(shown).append("\"]");
  }
  return path.append(path.empty() ? "" : ".").append(shown);
}

std::string PathTo(std::string_view list, std::size_t index) {
  return std::string(list).append("[").append(std::to_string(index)).append("]");
}

std::string Nearest(std::string_view word, const std::vector<std::string>& candidates) {
  constexpr std::size_t kLongestWord = 64;
  std::size_t comparisons = 4'000'000;  // of two characters: a hundredth of a second
  std::string_view nearest;
  std::size_t least = std::numeric_limits<std::size_t>::max();
  for (const std::string& candidate : candidates) {
    const std::size_t work = (word.size() + 1) * (candidate.size() + 1);
    if (std::max(word.size(), candidate.size()) > kLongestWord || work > comparisons) {
      continue;
    }
    comparisons -= work;
    const std::size_t distance = EditDistance(candidate, word);
    if (distance < least) {
      least = distance;
      nearest = candidate;
    }
  }
  return std::string(nearest);
}

std::string NearestHint(std::string_view word, const std::vector<std::string>& candidates) {
  const std::string nearest = Nearest(word, candidates);
  return nearest.empty() ? "" : ", the nearest is \"" + nearest + "\"";
}

}  // namespace standin
