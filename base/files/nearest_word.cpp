#include "base/files/nearest_word.h"

#include <algorithm>
#include <cstddef>
#include <limits>
#include <numeric>

namespace tarvo {
namespace {

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

}  // namespace tarvo
