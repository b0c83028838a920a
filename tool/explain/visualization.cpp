#include "tool/explain/visualization.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <map>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "base/image/canvas.h"
#include "base/image/colour.h"
#include "tool/reference/overlap_picture.h"

namespace tarvo {
namespace {

constexpr Rgba kWhite{255, 255, 255, 255};
constexpr Rgba kOutline{0, 0, 0, 200};
constexpr Rgba kPanel{16, 16, 16, 215};

const std::map<std::string_view, Visualization> kVisualizations = {
    {"bones", Visualization::kBones},
    {"pieces", Visualization::kPieces},
    {"depth", Visualization::kDepth},
    {"owner", Visualization::kOwner}};

/// Neighbouring numbers get distinct colours: hues step by the golden section.
Rgba ColourOfBone(std::size_t number, double brightness = 1.0) {
  const double hue = std::fmod(static_cast<double>(number) * 0.618033988749895, 1.0) * 6.0;
  const auto channel = [&](double at) {
    const double distance = std::abs(std::fmod(hue - at + 9.0, 6.0) - 3.0);
    return Byte((0.4 + 0.6 * std::clamp(2.0 - distance, 0.0, 1.0)) * brightness);
  };
  return {channel(0.0), channel(2.0), channel(4.0), 255};
}

/// From far (0) to near (1): dark blue over green to yellow, evenly brighter all the way.
Rgba ColourOfNearness(double nearness) {
  constexpr std::array<std::array<double, 3>, 5> kStops{
      {{68, 1, 84}, {59, 82, 139}, {33, 145, 140}, {94, 201, 98}, {253, 231, 37}}};
  const double place = std::clamp(nearness, 0.0, 1.0) * (kStops.size() - 1);
  const auto below = std::min(static_cast<std::size_t>(place), kStops.size() - 2);
  const double share = place - static_cast<double>(below);
  const auto channel = [&](std::size_t i) {
    return Byte(std::lerp(kStops.at(below).at(i), kStops.at(below + 1).at(i), share) / 255.0);
  };
  return {channel(0), channel(1), channel(2), 255};
}

std::string ShortNumber(double number) {
  std::ostringstream text;
  text.precision(3);
  text << (std::abs(number) < 5e-4 ? 0.0 : number);
  return text.str();
}

using Side = std::pair<Point, Point>;

std::vector<Side> SidesOf(const PlacedPiece& piece) {
  std::vector<Side> sides;
  for (std::size_t i = 0; i < piece.corners.size(); ++i) {
    sides.emplace_back(piece.corners.at(i), piece.corners.at((i + 1) % piece.corners.size()));
  }
  return sides;
}

/// The sides of a bone's pieces, without those that two neighbours have in common.
std::vector<Side> OutlineOf(const std::vector<const PlacedPiece*>& pieces) {
  std::vector<Side> outline;
  for (const PlacedPiece* piece : pieces) {
    for (const Side& side : SidesOf(*piece)) {
      const auto same = std::ranges::find_if(outline, [&](const Side& other) {
        return other == side || other == Side{side.second, side.first};
      });
      if (same == outline.end()) {
        outline.push_back(side);
      } else {
        outline.erase(same);
      }
    }
  }
  return outline;
}

class VisualizationPainter {
 public:
  VisualizationPainter(Picture frame, const Overlap& overlap, int layerWidth, int layerHeight)
      : picture_(std::move(frame)),
        overlap_(overlap),
        left_(std::max(0, picture_.originX)),
        bottom_(std::min(picture_.height, picture_.originY + layerHeight)),
        height_(bottom_ - std::max(0, picture_.originY)),
        size_(std::max(1, std::max(layerWidth, layerHeight) / 500)) {}

  Picture Bones() {
    const auto bones = PiecesByBone();
    for (const auto& [number, pieces] : bones) {
      DrawSides(OutlineOf(pieces), ColourOfBone(number), size_ + 1);
    }
    for (const auto& [number, pieces] : bones) {
      DrawTag(picture_, CentreOf(pieces[pieces.size() / 2]->corners), std::to_string(number + 1),
              ColourOfBone(number), size_);
    }
    NameBones();
    return std::move(picture_);
  }

  Picture Pieces() {
    const auto& pieces = overlap_.Pieces();
    for (const PlacedPiece& piece : pieces) {
      for (const auto& [from, to] : SidesOf(piece)) {
        DrawLine(picture_, from, to, ColourOfBone(piece.bone));
      }
    }
    std::vector<Point> taken;
    for (std::size_t i = pieces.size(); i-- > 0;) {
      const Point centre = CentreOf(pieces[i].corners);
      if (std::ranges::none_of(taken, [&](Point other) { return AreClose(centre, other); })) {
        DrawTag(picture_, centre, std::to_string(pieces.size() - i), ColourOfBone(pieces[i].bone));
        taken.push_back(centre);
      }
    }
    return std::move(picture_);
  }

  Picture Depth() {
    const auto& pieces = overlap_.Pieces();
    if (pieces.empty()) {
      return std::move(picture_);
    }
    const double farthest = pieces.front().depth;
    const double nearest = pieces.back().depth;
    const double range = std::max(farthest - nearest, 1e-9);
    PaintOver([&](const PlacedPiece& piece) {
      return ColourOfNearness((farthest - piece.depth) / range);
    });
    DrawScale(farthest / kDepthPerZ, nearest / kDepthPerZ);
    return std::move(picture_);
  }

  Picture Owners() {
    PaintOver([](const PlacedPiece& piece) {
      return ColourOfBone(piece.bone, piece.index % 2 == 0 ? 1.0 : 0.72);
    });
    NameBones();
    return std::move(picture_);
  }

 private:
  /// Whether the numbers at two places would cover one another; the one behind is left out.
  static bool AreClose(Point one, Point other) {
    constexpr int kNumberWidth = 24;
    return std::abs(one.x - other.x) < kNumberWidth && std::abs(one.y - other.y) < kTextHeight;
  }

  [[nodiscard]] std::map<std::size_t, std::vector<const PlacedPiece*>> PiecesByBone() const {
    std::map<std::size_t, std::vector<const PlacedPiece*>> bones;
    for (const PlacedPiece& piece : overlap_.Pieces()) {
      bones[piece.bone].push_back(&piece);
    }
    for (auto& [number, pieces] : bones) {
      std::ranges::sort(pieces, {}, &PlacedPiece::t);
    }
    return bones;
  }

  void DrawSides(const std::vector<Side>& sides, Rgba colour, int width) {
    for (const auto& [from, to] : sides) {
      DrawLine(picture_, from, to, kOutline, width + 2);
    }
    for (const auto& [from, to] : sides) {
      DrawLine(picture_, from, to, colour, width);
    }
  }

  /// Every pixel in the colour of the nearest half-opaque piece; nothing where there is none.
  template <typename ColourOf>
  void PaintOver(ColourOf colourOf) {
    std::ranges::fill(picture_.pixels, Rgba{});
    ForEachPixel(overlap_, [&](int x, int y, const std::vector<Fragment>& fragments) {
      const auto owner = std::find_if(
          fragments.rbegin(), fragments.rend(),
          [](const Fragment& fragment) { return fragment.sample[kAlpha] >= kOwningAlpha; });
      if (owner != fragments.rend()) {
        picture_.At(x, y) = colourOf(overlap_.Pieces()[owner->piece]);
      }
    });
  }

  /// A panel for so many lines; the place of its first line's top. None where it would cover more
  /// than half of the picture's width or height.
  std::optional<Point> DrawPanel(int lines, int width, int size) {
    const int height = (lines * kTextHeight + 8) * size;
    if (2 * width > picture_.width || 2 * height > picture_.height) {
      return std::nullopt;
    }
    FillBox(picture_, left_, bottom_ - height, width, height, kPanel);
    return Point{static_cast<double>(left_ + 6 * size),
                 static_cast<double>(bottom_ - height + 5 * size)};
  }

  void NameBones() {
    std::vector<std::pair<std::size_t, std::string>> lines;
    int width = 0;
    for (const auto& [number, pieces] : PiecesByBone()) {
      lines.emplace_back(number, std::to_string(number + 1) + "  " + overlap_.Bones()[number].name);
      width = std::max(width, TextWidth(lines.back().second));
    }
    const int count = static_cast<int>(lines.size());
    const int size = std::clamp(height_ / (3 * kTextHeight * std::max(count, 1)), 1, size_);
    const auto first = DrawPanel(count, (width + 28) * size, size);
    for (int i = 0; first && i < count; ++i) {
      const int x = static_cast<int>(first->x);
      const int y = static_cast<int>(first->y) + i * kTextHeight * size;
      const auto& [number, text] = lines[static_cast<std::size_t>(i)];
      FillBox(picture_, x, y, 10 * size, 8 * size, ColourOfBone(number));
      WriteText(picture_, x + 16 * size, y, text, kWhite, size);
    }
  }

  void DrawScale(double farthest, double nearest) {
    constexpr int kLines = 12;
    constexpr int kTicks = 5;
    const auto first = DrawPanel(kLines + 2, 80 * size_, size_);
    if (!first) {
      return;
    }
    const int x = static_cast<int>(first->x);
    const int top = static_cast<int>(first->y) + (kTextHeight + 5) * size_;
    const int length = (kLines - 1) * kTextHeight * size_;
    WriteText(picture_, x, static_cast<int>(first->y), "Z, near", kWhite, size_);
    for (int y = 0; y < length; ++y) {
      FillBox(picture_, x, top + y, 14 * size_, 1,
              ColourOfNearness(1.0 - static_cast<double>(y) / (length - 1)));
    }
    for (int tick = 0; tick < kTicks; ++tick) {
      const double share = static_cast<double>(tick) / (kTicks - 1);
      const int y = top + static_cast<int>(share * (length - 1));
      WriteText(picture_, x + 20 * size_, y - 4 * size_,
                ShortNumber(std::lerp(nearest, farthest, share)), kWhite, size_);
    }
    WriteText(picture_, x, top + length + 3 * size_, "far", kWhite, size_);
  }

  Picture picture_;
  const Overlap& overlap_;
  int left_;  // of what layer and picture share
  int bottom_;
  int height_;
  int size_;  // of text, by the picture's
};

}  // namespace

std::optional<Visualization> ReadVisualization(const std::string& text) {
  const auto found = kVisualizations.find(text);
  return found == kVisualizations.end() ? std::nullopt : std::optional(found->second);
}

Picture Show(Visualization visualization, const Picture& frame, const Overlap& overlap,
             int layerWidth, int layerHeight) {
  VisualizationPainter shower(frame, overlap, layerWidth, layerHeight);
  switch (visualization) {
    case Visualization::kBones:
      return shower.Bones();
    case Visualization::kPieces:
      return shower.Pieces();
    case Visualization::kDepth:
      return shower.Depth();
    case Visualization::kOwner:
      return shower.Owners();
  }
  return frame;
}

}  // namespace tarvo
