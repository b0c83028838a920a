#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarvo {

/// The candidate that the fewest single-character changes turn into `word`, the first of equals;
/// empty when there is none. Words of more than 64 bytes have none and are none, and no more
/// candidates are looked at than take a moment.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);
/// `, the nearest is "…"`, to follow a complaint about a word; empty without a nearest candidate.
std::string NearestHint(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace tarvo
