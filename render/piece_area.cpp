#include "render/piece_area.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace tarvo {
namespace {

/// Pixels by which the drawn edge may lie beside the corners' place in double precision, and more.
constexpr double kMargin = 2.0;
/// Up to here, in pixels, single precision keeps a place well within the margin.
constexpr double kFarthest = 100'000.0;

/// What the corners of pieces reach along one axis, in pixels of the render target.
struct Reach {
  double low = std::numeric_limits<double>::infinity();
  double high = -std::numeric_limits<double>::infinity();

  /// Unbounded from the first place on that is too far away, or none.
  void Include(double place) {
    if (std::abs(place) <= kFarthest) {
      low = std::min(low, place);
      high = std::max(high, place);
    } else {
      low = -std::numeric_limits<double>::infinity();
      high = std::numeric_limits<double>::infinity();
    }
  }

  /// The first pixel, and the one past the last, within 0 to `size`.
  [[nodiscard]] A_long First(A_long size) const { return Within(std::floor(low - kMargin), size); }
  [[nodiscard]] A_long Last(A_long size) const { return Within(std::ceil(high + kMargin), size); }

 private:
  static A_long Within(double place, A_long size) {
    return static_cast<A_long>(std::clamp(place, 0.0, static_cast<double>(size)));
  }
};

}  // namespace

Area AreaOf(const Frame& frame, const Tile& tile, const std::vector<const DrawPiece*>& pieces) {
  const double originX =
      1.0 * frame.in.output_origin_x + frame.in.pre_effect_source_origin_x - tile.x;
  const double originY =
      1.0 * frame.in.output_origin_y + frame.in.pre_effect_source_origin_y - tile.y;
  Reach x;
  Reach y;
  for (const DrawPiece* const piece : pieces) {
    // NOLINTNEXTLINE(modernize-loop-convert): corners are packed and must not be referred to.
    for (std::size_t corner = 0; corner < 4; ++corner) {
      x.Include(piece->quad->corners[corner][0] * frame.scaleX + originX);
      y.Include(piece->quad->corners[corner][1] * frame.scaleY + originY);
    }
  }
  const A_long left = x.First(tile.width);
  const A_long top = y.First(tile.height);
  const A_long width = x.Last(tile.width) - left;
  const A_long height = y.Last(tile.height) - top;
  if (width <= 0 || height <= 0) return {};
  return {.x = left, .y = top, .width = width, .height = height};
}

}  // namespace tarvo
