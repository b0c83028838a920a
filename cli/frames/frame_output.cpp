#include "cli/frames/frame_output.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <ostream>
#include <string_view>

#include "base/image/image_file.h"
#include "cli/frames/movie.h"
#include "cli/frames/output_picture.h"
#include "cli/process/console.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

/// Where a name has "%d" or "%0Nd", N from 1 to 9, for the last time.
struct FrameNumber {
  std::size_t place = 0;
  std::size_t length = 0;
  std::size_t width = 0;  ///< least number of digits
};

std::optional<FrameNumber> FindFrameNumber(const std::string& name) {
  for (std::size_t at = name.size(); at-- > 0;) {
    if (name[at] != '%') {
      continue;
    }
    const std::string_view rest = std::string_view(name).substr(at + 1);
    if (rest.starts_with('d')) {
      return FrameNumber{.place = at, .length = 2};
    }
    if (rest.size() >= 3 && rest[0] == '0' && rest[1] >= '1' && rest[1] <= '9' && rest[2] == 'd') {
      return FrameNumber{
          .place = at, .length = 4, .width = static_cast<std::size_t>(rest[1] - '0')};
    }
  }
  return std::nullopt;
}

}  // namespace

bool IsUnsupportedPattern(const std::string& output) {
  const std::string name = std::filesystem::path(output).filename().string();
  bool hasConversion = false;
  for (std::size_t at = name.find('%'); at != std::string::npos; at = name.find('%', at + 1)) {
    const std::size_t behind = name.find_first_not_of("0123456789", at + 1);
    hasConversion |=
        behind != std::string::npos && std::isalpha(static_cast<unsigned char>(name[behind])) != 0;
  }
  return !FindFrameNumber(output) && (hasConversion || name.find("##") != std::string::npos);
}

OutputKind OutputKindOf(const std::string& output) {
  if (output == "-") {
    return OutputKind::kStream;
  }
  if (FindFrameNumber(output)) {
    return OutputKind::kFrames;
  }
  return IsMovie(output) ? OutputKind::kMovie : OutputKind::kPicture;
}

std::string FrameFile(const std::string& pattern, int frame) {
  const FrameNumber found = FindFrameNumber(pattern).value();
  std::string number = std::to_string(frame);
  number.insert(0, found.width - std::min(found.width, number.size()), '0');
  return std::string(pattern).replace(found.place, found.length, number);
}

void FrameFiles::Take(int frame, const Picture& picture) {
  WritePicture(FrameFile(pattern_, frame), picture, sync_);
}

FrameStream::FrameStream(std::ostream& stream, bool isRaw) : stream_(stream), isRaw_(isRaw) {
  MakeOutputBinary();
}

void FrameStream::Take(int /*frame*/, const Picture& picture) {
  if (isRaw_) {
    stream_.write(reinterpret_cast<const char*>(picture.Bytes()),
                  static_cast<std::streamsize>(picture.pixels.size() * sizeof(Rgba)));
  } else {
    stream_ << EncodePng(picture);
  }
  if (!stream_.flush()) {
    throw CommandExit(kOutputLost, {});  // the reason is said at the end of every command
  }
}

}  // namespace tarvo
