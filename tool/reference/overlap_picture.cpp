#include "tool/reference/overlap_picture.h"

#include <algorithm>
#include <cstddef>

namespace tarvo {
namespace {

Point CentreOfPixel(int x, int y) { return {x + 0.5, y + 0.5}; }

std::size_t IndexOf(const OverlapView& view, int x, int y) {
  return static_cast<std::size_t>(y) * static_cast<std::size_t>(view.width) +
         static_cast<std::size_t>(x);
}

/// Pieces by the rows of the frame that they touch, each row's deepest first.
std::vector<std::vector<std::size_t>> PiecesByRow(const Overlap& overlap) {
  const int height = overlap.View().height;
  std::vector<std::vector<std::size_t>> rows(static_cast<std::size_t>(height));
  for (std::size_t i = 0; i < overlap.Pieces().size(); ++i) {
    const Bounds bounds = BoundsOf(overlap.Pieces()[i].corners);
    ForEachPixelIn({0.0, bounds.top, 1.0, bounds.bottom}, 1, height,
                   [&](int /*x*/, int y) { rows[static_cast<std::size_t>(y)].push_back(i); });
  }
  return rows;
}

void ExcludeEdges(const Overlap& overlap, std::vector<bool>& comparable) {
  const OverlapView& view = overlap.View();
  for (const PlacedPiece& piece : overlap.Pieces()) {
    Bounds bounds = BoundsOf(piece.corners);
    bounds = {bounds.left - kEdgeMargin, bounds.top - kEdgeMargin, bounds.right + kEdgeMargin,
              bounds.bottom + kEdgeMargin};
    ForEachPixelIn(bounds, view.width, view.height, [&](int x, int y) {
      if (DistanceToSides(piece.corners, CentreOfPixel(x, y)) < kEdgeMargin) {
        comparable[IndexOf(view, x, y)] = false;
      }
    });
  }
}

}  // namespace

void ForEachPixel(const Overlap& overlap,
                  const std::function<void(int x, int y, const std::vector<Fragment>&)>& visit) {
  const OverlapView& view = overlap.View();
  std::vector<std::vector<Fragment>> row(static_cast<std::size_t>(view.width));
  const auto piecesByRow = PiecesByRow(overlap);
  for (int y = 0; y < view.height; ++y) {
    std::ranges::for_each(row, [](auto& fragments) { fragments.clear(); });
    for (const std::size_t i : piecesByRow[static_cast<std::size_t>(y)]) {
      const PlacedPiece& piece = overlap.Pieces()[i];
      const Bounds bounds = BoundsOf(piece.corners);
      ForEachPixelIn({bounds.left, 0.0, bounds.right, 1.0}, view.width, 1, [&](int x, int /*y*/) {
        if (const auto sample = overlap.ColourAt(piece, CentreOfPixel(x, y))) {
          row[static_cast<std::size_t>(x)].push_back({i, *sample});
        }
      });
    }
    for (int x = 0; x < view.width; ++x) {
      visit(x, y, row[static_cast<std::size_t>(x)]);
    }
  }
}

OverlapPicture DrawOverlap(const Overlap& overlap) {
  const OverlapView& view = overlap.View();
  OverlapPicture drawn{.picture = Picture(view.width, view.height)};
  drawn.comparable.resize(drawn.picture.pixels.size());
  ForEachPixel(overlap, [&](int x, int y, const std::vector<Fragment>& fragments) {
    const PixelBreakdown breakdown = ExplainPixel(overlap, fragments);
    drawn.picture.At(x, y) = Straight(breakdown.premultiplied);
    drawn.comparable[IndexOf(view, x, y)] = breakdown.ownersComparable || !view.exact;
  });
  ExcludeEdges(overlap, drawn.comparable);
  return drawn;
}

}  // namespace tarvo
