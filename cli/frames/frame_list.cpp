#include "cli/frames/frame_list.h"

#include <cstddef>
#include <utility>

#include "cli/options/scene_options.h"

namespace tarvo {
namespace {

struct FrameRange {
  int first = 0;
  int last = 0;
  int step = 1;
};

/// The text up to a sign, which is taken off it with the sign; all of it where there is no sign.
std::string_view TakeUpTo(char sign, std::string_view& text) {
  const std::size_t place = text.find(sign);
  const std::string_view part = text.substr(0, place);
  text.remove_prefix(place == std::string_view::npos ? text.size() : place + 1);
  return part;
}

/// "5", "1-3" or "7-10:2", all below `count`.
std::optional<FrameRange> ReadRange(std::string_view text, int count) {
  const bool isRange = text.find('-') != std::string_view::npos;
  const bool hasStep = text.find(':') != std::string_view::npos;
  const auto first = ReadNumber<int>(isRange ? TakeUpTo('-', text) : text);
  const auto last = isRange ? ReadNumber<int>(TakeUpTo(':', text)) : first;
  const auto step = isRange && hasStep ? ReadNumber<int>(text) : std::optional(1);
  if (!first || !last || !step || *first < 0 || *last < *first || *last >= count || *step < 1) {
    return std::nullopt;
  }
  return FrameRange{*first, *last, *step};
}

/// How many frames from this place on are one range: with a step above 1, two are none.
std::size_t LengthOfRange(const std::vector<int>& frames, std::size_t start) {
  if (start + 1 == frames.size() || frames[start + 1] < frames[start]) {
    return 1;
  }
  const int step = frames[start + 1] - frames[start];
  std::size_t end = start + 2;
  while (end < frames.size() && frames[end] - frames[end - 1] == step) {
    ++end;
  }
  const std::size_t length = end - start;
  return length == 2 && step > 1 ? 1 : length;
}

}  // namespace

std::optional<std::vector<int>> ReadFrameList(std::string_view text, int count) {
  std::vector<int> frames;
  std::vector<char> isListed(static_cast<std::size_t>(count));
  do {
    const bool isLast = text.find(',') == std::string_view::npos;
    const auto range = ReadRange(TakeUpTo(',', text), count);
    if (!range || (!isLast && text.empty())) {
      return std::nullopt;
    }
    for (long long frame = range->first; frame <= range->last; frame += range->step) {
      if (std::exchange(isListed[static_cast<std::size_t>(frame)], 1) == 0) {
        frames.push_back(static_cast<int>(frame));
      }
    }
  } while (!text.empty());
  return frames;
}

std::string FrameListText(const std::vector<int>& frames) {
  std::string text;
  for (std::size_t start = 0; start < frames.size();) {
    const std::size_t length = LengthOfRange(frames, start);
    text += (text.empty() ? "" : ",") + std::to_string(frames[start]);
    if (length > 1) {
      const int step = frames[start + 1] - frames[start];
      text += "-" + std::to_string(frames[start + length - 1]);
      text += step > 1 ? ":" + std::to_string(step) : "";
    }
    start += length;
  }
  return text;
}

}  // namespace tarvo
