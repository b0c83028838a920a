#include "tool/reference/overlap_pixel.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace tarvo {
namespace {

constexpr double kOwningDoubt = 2.0 / 255.0;

bool SameImage(const PlacedPiece& one, const PlacedPiece& other) {
  return one.bone == other.bone && one.from == other.from;
}

/// Walks through the steps of one pixel, keeping what each piece has to do with it.
class Teller {
 public:
  Teller(const Overlap& overlap, const std::vector<Fragment>& fragments) : overlap_(overlap) {
    for (const Fragment& fragment : fragments) {
      const double opacity = overlap.OpacityOf(overlap.Pieces()[fragment.piece]);
      story_.parts.push_back({.piece = fragment.piece,
                              .sample = fragment.sample,
                              .alpha = fragment.sample[kAlpha] * opacity});
      sources_.push_back(Premultiplied(fragment.sample, opacity));
      story_.ownersDecided =
          story_.ownersDecided && std::abs(fragment.sample[kAlpha] - kOwningAlpha) > kOwningDoubt;
    }
  }

  PixelStory Tell() {
    FindOwners();
    KeepGreatest();
    LayOver();
    ShareOut();
    return std::move(story_);
  }

 private:
  [[nodiscard]] const PlacedPiece& PieceOf(const PixelPart& part) const {
    return overlap_.Pieces()[part.piece];
  }

  /// The owner of the image that a part shows; the end when nobody owns it here.
  auto OwnerFor(const PixelPart& part) {
    auto& parts = story_.parts;
    return std::find_if(parts.rbegin(), parts.rend(), [&](const PixelPart& other) {
      return SameImage(PieceOf(other), PieceOf(part)) && other.sample[kAlpha] >= kOwningAlpha;
    });
  }

  void FindOwners() {
    for (PixelPart& part : story_.parts) {
      const auto owner = OwnerFor(part);
      const bool isExact = overlap_.View().exact;
      part.owner = isExact && owner != story_.parts.rend() && &*owner == &part;
      part.laidOver = !isExact || part.owner || owner == story_.parts.rend();
    }
  }

  void KeepGreatest() {
    for (const Colour& source : sources_) {
      std::ranges::transform(source, greatest_, greatest_.begin(),
                             [](double a, double b) { return std::max(a, b); });
    }
  }

  void LayOver() {
    Colour& result = story_.premultiplied;
    result = greatest_;
    for (std::size_t i = 0; i < sources_.size(); ++i) {
      if (!story_.parts[i].laidOver) {
        continue;
      }
      const double seenThrough = 1.0 - sources_[i][kAlpha];
      std::ranges::transform(sources_[i], result, result.begin(), [&](double above, double below) {
        return above + below * seenThrough;
      });
      result = Stored(result);
    }
  }

  /// From the nearest to the deepest, what the pieces before have left to be seen.
  void ShareOut() {
    double seen = 1.0;
    for (std::size_t i = sources_.size(); i-- > 0;) {
      PixelPart& part = story_.parts[i];
      if (!part.laidOver) {
        continue;
      }
      std::ranges::transform(sources_[i], part.over.begin(),
                             [&](double value) { return value * seen; });
      seen *= 1.0 - sources_[i][kAlpha];
    }
    for (std::size_t channel = 0; channel < greatest_.size(); ++channel) {
      for (std::size_t i = sources_.size(); i-- > 0;) {
        if (sources_[i].at(channel) == greatest_.at(channel)) {
          story_.parts[i].ground.at(channel) = greatest_.at(channel) * seen;
          break;
        }
      }
    }
  }

  const Overlap& overlap_;
  std::vector<Colour> sources_;  ///< premultiplied, one a part
  Colour greatest_{};
  PixelStory story_;
};

}  // namespace

PixelStory TellPixel(const Overlap& overlap, const std::vector<Fragment>& fragments) {
  return Teller(overlap, fragments).Tell();
}

}  // namespace tarvo
