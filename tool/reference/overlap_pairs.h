#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

#include "tool/reference/overlap.h"

namespace tarvo {

/// Looks through the pairs of pieces whose boxes lie on one another: a sweep from left to right
/// that compares a piece with those alone whose columns it shares. The worst case, all pieces in
/// the same columns, stays quadratic, so that the comparisons have a limit.
class OverlapPairs {
 public:
  /// REQUIRES: the pieces outlive this object.
  explicit OverlapPairs(const PlacedPiece* first, const PlacedPiece* last) {
    for (const PlacedPiece* piece = first; piece != last; ++piece) {
      pieces_.push_back({piece, BoundsOf(piece->corners)});
    }
    std::ranges::stable_sort(pieces_, {}, [](const Boxed& boxed) { return boxed.bounds.left; });
  }

  /// Calls visit(one, other) for each such pair until it returns false. False once more than `most`
  /// pairs of pieces had to be compared.
  template <typename Visit>
  [[nodiscard]] bool ForEach(std::size_t most, Visit visit) const {
    std::size_t comparisons = 0;
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
      const Boxed& one = pieces_[i];
      for (std::size_t j = i + 1; j < pieces_.size() && pieces_[j].bounds.left < one.bounds.right;
           ++j) {
        const Boxed& other = pieces_[j];
        if (++comparisons > most) {
          return false;
        }
        const bool shareRows =
            other.bounds.top < one.bounds.bottom && one.bounds.top < other.bounds.bottom;
        if (shareRows && !visit(*one.piece, *other.piece)) {
          return true;
        }
      }
    }
    return true;
  }

 private:
  struct Boxed {
    const PlacedPiece* piece = nullptr;
    Bounds bounds;
  };

  std::vector<Boxed> pieces_;
};

/// Pairs of pieces that are compared in one frame at most: a second or so.
inline constexpr std::size_t kMostComparisons = 200'000'000;

}  // namespace tarvo
