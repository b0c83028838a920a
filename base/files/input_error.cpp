#include "base/files/input_error.h"

#include <algorithm>
#include <cctype>
#include <utility>

#include "base/files/escaped_text.h"

namespace tarvo {
namespace {

bool IsPlainWord(std::string_view key) {
  return !key.empty() && std::ranges::all_of(key, [](unsigned char letter) {
    return std::isalnum(letter) != 0 || letter == '_' || letter == '-';
  });
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

}  // namespace tarvo
