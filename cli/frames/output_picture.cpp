#include "cli/frames/output_picture.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cstdint>
#include <map>
#include <string_view>
#include <vector>

#include "base/files/input_error.h"
#include "base/image/image_file.h"
#include "cli/options/suggestions.h"

namespace tarvo {
namespace {

constexpr std::uint8_t kOpaque = 255;

const std::map<std::string_view, std::string_view> kColourNames = {
    {"black", "#000000"}, {"white", "#ffffff"}, {"grey", "#808080"},
    {"red", "#ff0000"},   {"green", "#008000"}, {"blue", "#0000ff"},
};

/// "#rgb" as "#rrggbb", anything else as it is.
std::string WithTwoDigits(std::string_view colour) {
  if (colour.size() != 4) {
    return std::string(colour);
  }
  std::string twice = "#";
  for (const char digit : colour.substr(1)) {
    twice.append(2, digit);
  }
  return twice;
}

std::optional<Rgba> ReadColour(const std::string& text) {
  const auto name = kColourNames.find(text);
  const std::string colour = WithTwoDigits(name == kColourNames.end() ? text : name->second);
  if (colour.size() != 7 || colour.front() != '#' ||
      !std::all_of(colour.begin() + 1, colour.end(),
                   [](unsigned char digit) { return std::isxdigit(digit) != 0; })) {
    return std::nullopt;
  }
  const auto channel = [&](std::size_t place) {
    std::uint8_t value = 0;
    std::from_chars(colour.data() + place, colour.data() + place + 2, value, 16);
    return value;
  };
  return Rgba{channel(1), channel(3), channel(5), kOpaque};
}

Rgba Checker(int x, int y) {
  constexpr int kSquare = 16;
  constexpr Rgba kLight{255, 255, 255, kOpaque};
  constexpr Rgba kDark{204, 204, 204, kOpaque};
  return (x / kSquare + y / kSquare) % 2 == 0 ? kLight : kDark;
}

std::uint8_t Blend(std::uint8_t front, std::uint8_t back, std::uint8_t alpha) {
  return static_cast<std::uint8_t>((front * alpha + back * (kOpaque - alpha) + kOpaque / 2) /
                                   kOpaque);
}

}  // namespace

std::optional<Background> ReadBackground(const std::string& text) {
  if (text == "checker") {
    return Checker;
  }
  if (const auto colour = ReadColour(text)) {
    return [colour = *colour](int /*x*/, int /*y*/) { return colour; };
  }
  return std::nullopt;
}

std::string BackgroundWords() {
  std::vector<const char*> words(kBackgroundNames.begin(), kBackgroundNames.end());
  words.insert(words.end(), {"#rgb", "#rrggbb"});
  return Alternatives(words);
}

Picture CropToLayer(const Picture& picture, int width, int height) {
  Picture cropped(width, height);
  const int left = std::max(0, -picture.originX);
  const int right = std::min(width, picture.width - picture.originX);
  for (int y = std::max(0, -picture.originY);
       y < std::min(height, picture.height - picture.originY); ++y) {
    for (int x = left; x < right; ++x) {
      cropped.At(x, y) = picture.At(x + picture.originX, y + picture.originY);
    }
  }
  return cropped;
}

void WritePicture(const std::string& file, const Picture& picture, Sync sync) {
  try {
    WritePng(file, picture, sync);
  } catch (const FileError& error) {
    throw InputError({file + ": " + error.what()});
  }
}

Picture Over(const Picture& picture, const Background& background) {
  Picture result = picture;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const Rgba front = picture.At(x, y);
      const Rgba back = background(x, y);
      result.At(x, y) = {Blend(front.red, back.red, front.alpha),
                         Blend(front.green, back.green, front.alpha),
                         Blend(front.blue, back.blue, front.alpha), kOpaque};
    }
  }
  return result;
}

}  // namespace tarvo
