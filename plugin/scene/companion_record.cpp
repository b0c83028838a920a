#include "plugin/scene/companion_record.h"

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

namespace plugin {
namespace {

/// Effect stacks are far shorter; a record that claims more would only make us grow empty lists.
constexpr A_long kLargestEffectIndex = 65'535;
constexpr std::uintptr_t kMostQuads = 1'000'000;

/// The bytes of one image's fields in a record. A record is packed: fields are copied, not referred
/// to.
struct ImageOffsets {
  std::size_t world;
  std::size_t newImage;
  std::size_t opacity;
};
constexpr std::array<ImageOffsets, kImageFamilies.size()> kImageOffsets{{
    {offsetof(CompanionSlot, imageA), offsetof(CompanionSlot, newImageA),
     offsetof(CompanionSlot, opacityA)},
    {offsetof(CompanionSlot, imageB), offsetof(CompanionSlot, newImageB),
     offsetof(CompanionSlot, opacityB)},
}};
static_assert(sizeof(PF_EffectWorld) == TARVO_WORLD_BYTES);

template <class Value>
Value ReadAt(const void* sender, std::size_t offset) {
  Value value;
  std::memcpy(&value, static_cast<const std::byte*>(sender) + offset, sizeof value);
  return value;
}

CompanionRecord::Image ReadImage(const void* sender, const ImageOffsets& at) {
  return {.isNew = ReadAt<std::uint8_t>(sender, at.newImage) != 0,
          .opacity = ReadAt<double>(sender, at.opacity),
          .world = ReadAt<PF_EffectWorld>(sender, at.world)};
}

std::optional<std::vector<PieceQuad>> ReadQuads(const PieceQuadList& list) {
  const auto first = reinterpret_cast<std::uintptr_t>(list.first);
  const auto last = reinterpret_cast<std::uintptr_t>(list.last);
  if (last < first || (first == 0 && last != 0)) {
    return std::nullopt;
  }
  const std::uintptr_t bytes = last - first;
  if (bytes % sizeof(PieceQuad) != 0 || bytes / sizeof(PieceQuad) > kMostQuads) {
    return std::nullopt;
  }
  return std::vector<PieceQuad>(list.first, list.last);
}

}  // namespace

std::optional<CompanionRecord> ReadCompanionRecord(const void* sender) {
  if (sender == nullptr) {
    return std::nullopt;
  }
  const auto effectIndex = ReadAt<A_long>(sender, offsetof(CompanionSlot, effectIndex));
  if (effectIndex < 0 || effectIndex > kLargestEffectIndex) {
    return std::nullopt;
  }
  auto quads = ReadQuads(ReadAt<PieceQuadList>(sender, offsetof(CompanionSlot, quads)));
  if (!quads) {
    return std::nullopt;
  }
  return CompanionRecord{.effectIndex = effectIndex,
                         .quads = *std::move(quads),
                         .images = {ReadImage(sender, kImageOffsets[kImageA]),
                                    ReadImage(sender, kImageOffsets[kImageB])}};
}

void ClearNewImageFlag(void* sender, ImageFamily family) {
  static_cast<std::uint8_t*>(sender)[kImageOffsets[family].newImage] = 0;
}

}  // namespace plugin
