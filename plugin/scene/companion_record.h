#pragma once

#include <array>
#include <optional>
#include <vector>

#include "plugin/scene/scene.h"

namespace plugin {

/// A companion's record, read once and checked, so that nothing behind it deals with addresses and
/// unaligned bytes.
struct CompanionRecord {
  struct Image {
    bool isNew;
    double opacity;
    PF_EffectWorld world;
  };

  A_long effectIndex;
  std::vector<PieceQuad> quads;
  std::array<Image, kImageFamilies.size()> images;
};

/// Reads the record at `sender`, at any alignment. Nothing if it cannot be meant: no record, a
/// place outside 0 to 65,535, or a quad list whose addresses make no sense (end before start, no
/// whole number of pieces, null with a length, more than 1,000,000 pieces).
std::optional<CompanionRecord> ReadCompanionRecord(const void* sender);

/// Clears the flag of one new image in the sender's memory: the image has been taken.
void ClearNewImageFlag(void* sender, ImageFamily family);

}  // namespace plugin
