#include "plugin/render/piece_area.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <limits>

namespace plugin {
namespace {

/// Pixels by which the drawn edge may lie beside the corners' place in double precision, and more.
constexpr double kMargin = 2.0;
/// Up to here, in pixels, single precision keeps a number, and the sum of a few, well within the
/// margin.
constexpr double kFarthest = 100'000.0;

/// OpenGL rounds every part of a place before the parts are added up: a small sum of large ones is
/// not near.
bool AreNear(std::initializer_list<double> parts) {
  return std::ranges::all_of(parts, [](double part) { return std::abs(part) <= kFarthest; });
}

/// What the corners of pieces reach along one axis, in pixels of the render target.
struct Reach {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  void Include(double place) {
    low = std::min(low, place);
    high = std::max(high, place);
  }

  /// The first pixel, and the one past the last, within 0 to `size`.
  [[nodiscard]] A_long First(A_long size) const { return Within(std::floor(low - kMargin), size); }
  [[nodiscard]] A_long Last(A_long size) const { return Within(std::ceil(high + kMargin), size); }

 private:
  static A_long Within(double place, A_long size) {
    return static_cast<A_long>(std::clamp(place, 0.0, static_cast<double>(size)));
  }
};

Area Box(const Tile& tile, const Reach& x, const Reach& y) {
  const A_long left = x.First(tile.width);
  const A_long top = y.First(tile.height);
  const A_long width = x.Last(tile.width) - left;
  const A_long height = y.Last(tile.height) - top;
  if (width <= 0 || height <= 0) {
    return {};
  }
  return {.x = left, .y = top, .width = width, .height = height};
}

}  // namespace

Area AreaOf(const Frame& frame, const Tile& tile, const std::vector<const DrawPiece*>& pieces) {
  const PF_InData& in = frame.in;
  if (!AreNear({1.0 * in.output_origin_x, 1.0 * in.pre_effect_source_origin_x,
                1.0 * in.output_origin_y, 1.0 * in.pre_effect_source_origin_y})) {
    return WholeOf(tile);
  }
  const double originX = 1.0 * in.output_origin_x + in.pre_effect_source_origin_x - tile.x;
  const double originY = 1.0 * in.output_origin_y + in.pre_effect_source_origin_y - tile.y;
  Reach reachX;
  Reach reachY;
  for (const DrawPiece* const piece : pieces) {
    // NOLINTNEXTLINE(modernize-loop-convert): corners are packed and must not be referred to.
    for (std::size_t corner = 0; corner < 4; ++corner) {
      const double x = piece->quad->corners[corner][0] * frame.scaleX;
      const double y = piece->quad->corners[corner][1] * frame.scaleY;
      if (!AreNear({x, y})) {
        return WholeOf(tile);
      }
      reachX.Include(x + originX);
      reachY.Include(y + originY);
    }
  }
  return Box(tile, reachX, reachY);
}

}  // namespace plugin
