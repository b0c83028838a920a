#include "tool/reference/overlap_pixel.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tarvo {
namespace {

constexpr double kOwningMargin = 2.0 / 255.0;

bool SameImage(const PlacedPiece& one, const PlacedPiece& other) {
  return one.bone == other.bone && one.from == other.from;
}

/// Carries out the passes of one pixel and records what each piece contributes.
class PixelExplainer {
 public:
  PixelExplainer(const Overlap& overlap, const std::vector<Fragment>& fragments)
      : overlap_(overlap) {
    for (const Fragment& fragment : fragments) {
      const double opacity = overlap.OpacityOf(overlap.Pieces()[fragment.piece]);
      breakdown_.parts.push_back({.piece = fragment.piece,
                                  .sample = fragment.sample,
                                  .alpha = fragment.sample[kAlpha] * opacity});
      sources_.push_back(Premultiplied(fragment.sample, opacity));
      breakdown_.ownersComparable =
          breakdown_.ownersComparable &&
          std::abs(fragment.sample[kAlpha] - kOwningAlpha) > kOwningMargin;
    }
  }

  PixelBreakdown Explain() {
    FindOwners();
    RunMaxPass();
    Composite();
    AttributeColour();
    return std::move(breakdown_);
  }

 private:
  [[nodiscard]] const PlacedPiece& PieceOf(const PixelPart& part) const {
    return overlap_.Pieces()[part.piece];
  }

  /// The owner of the image that a part shows; the end if no piece owns it here.
  auto OwnerFor(const PixelPart& part) {
    auto& parts = breakdown_.parts;
    return std::find_if(parts.rbegin(), parts.rend(), [&](const PixelPart& other) {
      return SameImage(PieceOf(other), PieceOf(part)) && other.sample[kAlpha] >= kOwningAlpha;
    });
  }

  void FindOwners() {
    for (PixelPart& part : breakdown_.parts) {
      const auto owner = OwnerFor(part);
      const bool isExact = overlap_.View().exact;
      part.owner = isExact && owner != breakdown_.parts.rend() && &*owner == &part;
      part.composited = !isExact || part.owner || owner == breakdown_.parts.rend();
    }
  }

  void RunMaxPass() {
    for (const Colour& source : sources_) {
      std::ranges::transform(source, greatest_, greatest_.begin(),
                             [](double a, double b) { return std::max(a, b); });
    }
  }

  void Composite() {
    Colour& result = breakdown_.premultiplied;
    result = greatest_;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      if (!breakdown_.parts[i].composited) {
        continue;
      }
      const double seenThrough = 1.0 - sources_[i][kAlpha];
      std::ranges::transform(sources_[i], result, result.begin(), [&](double above, double below) {
        return above + below * seenThrough;
      });
      result = Stored(result);
    }
  }

  /// From the nearest to the deepest, weighted by what the pieces in front leave visible.
  void AttributeColour() {
    double seen = 1.0;
    for (std::size_t i = sources_.size(); i-- > 0;) {
      PixelPart& part = breakdown_.parts[i];
      if (!part.composited) {
        continue;
      }
      std::ranges::transform(sources_[i], part.over.begin(),
                             [&](double value) { return value * seen; });
      seen *= 1.0 - sources_[i][kAlpha];
    }
    for (std::size_t channel = 0; channel < greatest_.size(); ++channel) {
      for (std::size_t i = sources_.size(); i-- > 0;) {
        if (sources_[i].at(channel) == greatest_.at(channel)) {
          breakdown_.parts[i].maxPass.at(channel) = greatest_.at(channel) * seen;
          break;
        }
      }
    }
  }

  const Overlap& overlap_;
  std::vector<Colour> sources_;  ///< premultiplied, one a part
  Colour greatest_{};
  PixelBreakdown breakdown_;
};

}  // namespace

PixelBreakdown ExplainPixel(const Overlap& overlap, const std::vector<Fragment>& fragments) {
  return PixelExplainer(overlap, fragments).Explain();
}

}  // namespace tarvo
