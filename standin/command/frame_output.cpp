#include "standin/command/frame_output.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <ostream>
#include <regex>

#include "standin/command/movie.h"
#include "standin/command/system.h"
#include "standin/image_file.h"
#include "standin/scene_faults.h"

namespace standin {
namespace {

const std::regex& FrameNumber() {
  static const std::regex number("%(?:0([1-9]))?d");
  return number;
}

}  // namespace

OutputKind KindOf(const std::string& output) {
  if (output == "-") {
    return OutputKind::kStream;
  }
  if (std::regex_search(output, FrameNumber())) {
    return OutputKind::kFrames;
  }
  return IsMovie(output) ? OutputKind::kMovie : OutputKind::kPicture;
}

std::string FrameFile(const std::string& pattern, int frame) {
  std::smatch place;
  std::regex_search(pattern, place, FrameNumber());
  const std::size_t width = place[1].matched ? std::stoul(place[1]) : 0;
  std::string number = std::to_string(frame);
  number.insert(0, width - std::min(width, number.size()), '0');
  return place.prefix().str() + number + place.suffix().str();
}

void FrameFiles::Take(int frame, const Picture& picture) {
  const std::string file = FrameFile(pattern_, frame);
  try {
    WritePng(file, picture);
  } catch (const FileError& error) {
    throw InputError({file + ": " + error.what()});
  }
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
    throw InputError({"standard output cannot be written"});
  }
}

}  // namespace standin
