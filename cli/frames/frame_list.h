#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tarvo {

/// Frames as people list them: numbers, ranges "1-3" with both ends, and ranges with a step
/// "7-10:2", between commas. In the order of the text, each once. None when the text is no such
/// list, or one of its frames is `count` or more.
std::optional<std::vector<int>> ReadFrameList(std::string_view text, int count);

/// Frames, each once, as such a list in their order, abbreviated: "0-3,5,8-14:2".
std::string FrameListText(const std::vector<int>& frames);

}  // namespace tarvo
