#include "plugin/render/draw_list.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <optional>
#include <utility>

#include "plugin/host/parameters.h"

namespace plugin {
namespace {

/// Keeps different Z values far apart, so that the small terms below order pieces only within one.
constexpr double kDepthPerZ = 1'000'000.0;
/// Lets the depth fall along a bone whose two Z values are equal, in Z.
constexpr double kLeastFall = 0.0001;
/// Puts the later of two bones with the same Z values in front, in depth.
constexpr double kDepthPerBone = 0.0001;

/// The depths at the two ends of one bone.
struct BoneDepth {
  double start;
  double end;
  double ordinal;

  [[nodiscard]] double At(double boneT) const {
    return start * (1.0 - boneT) + end * boneT - kDepthPerBone * ordinal;
  }
};

BoneDepth DepthOfBone(A_long ordinal, PF_ParamDef* const* params) {
  const A_long pair = std::min(ordinal, kBoneCount - 1);
  const double start = params[StartZIndex(pair)]->u.fs_d.value;
  double end = params[EndZIndex(pair)]->u.fs_d.value;
  if (end == start) {
    end -= kLeastFall;
  }
  return {start * kDepthPerZ, end * kDepthPerZ, static_cast<double>(ordinal)};
}

std::optional<ImageFamily> FamilyOf(const PieceQuad& quad) {
  if (quad.imageSelect == TARVO_IMAGE_A) {
    return kImageA;
  }
  if (quad.imageSelect == TARVO_IMAGE_B) {
    return kImageB;
  }
  return std::nullopt;
}

void GatherSlot(const Scene& scene, std::size_t place, PF_ParamDef* const* params,
                std::vector<DrawPiece>& pieces) {
  if (place >= scene.boneOrdinal.size() || scene.boneOrdinal[place] < 0) {
    return;
  }
  const Slot& slot = scene.slots[place];
  const BoneDepth depth = DepthOfBone(scene.boneOrdinal[place], params);
  for (const PieceQuad& quad : slot.quads) {
    const std::optional<ImageFamily> family = FamilyOf(quad);
    if (!family || slot.images[*family].texture == 0) {
      continue;
    }
    pieces.push_back(
        {.quad = &quad, .depth = depth.At(quad.boneT), .slot = place, .family = *family});
  }
}

/// Splits [lo, hi] around the depth of its middle piece and sorts both parts. The parts are
/// independent, so the longer one is left to the loop: recursion stays shallow.
void SortRange(std::vector<DrawPiece>& pieces, std::ptrdiff_t lo, std::ptrdiff_t hi) {
  const auto at = [&](std::ptrdiff_t index) -> DrawPiece& {
    return pieces[static_cast<std::size_t>(index)];
  };
  while (lo < hi) {
    std::ptrdiff_t i = lo;
    std::ptrdiff_t j = hi;
    const double pivot = at((lo + hi) / 2).depth;
    while (i <= j) {
      while (at(i).depth > pivot) {
        ++i;
      }
      while (pivot > at(j).depth) {
        --j;
      }
      if (i <= j) {
        std::swap(at(i++), at(j--));
      }
    }
    if (j - lo < hi - i) {
      SortRange(pieces, lo, j);
      lo = i;
    } else {
      SortRange(pieces, i, hi);
      hi = j;
    }
  }
}

std::size_t CountOfPieces(const Scene& scene) {
  return std::transform_reduce(scene.slots.begin(), scene.slots.end(), std::size_t{0}, std::plus(),
                               [](const Slot& slot) { return slot.quads.size(); });
}

}  // namespace

void SortByFallingDepth(std::vector<DrawPiece>& pieces) {
  SortRange(pieces, 0, static_cast<std::ptrdiff_t>(pieces.size()) - 1);
}

std::vector<DrawPiece> BuildDrawList(const Scene& scene, PF_ParamDef* const* params) {
  std::vector<DrawPiece> pieces;
  pieces.reserve(CountOfPieces(scene));
  for (std::size_t place = 0; place < scene.slots.size(); ++place) {
    if (!scene.slots[place].quads.empty()) {
      GatherSlot(scene, place, params, pieces);
    }
  }
  SortByFallingDepth(pieces);
  return pieces;
}

}  // namespace plugin
