#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <vector>

#include <window_system.h>

#include "sdk/effect.h"
#include "tarvo/companion.h"

namespace plugin {

/// The two images that a companion may send. Whatever is done for one is done for the other.
enum ImageFamily : std::size_t { kImageA, kImageB };
inline constexpr std::array kImageFamilies{kImageA, kImageB};

/// One of the two images of a slot, from the companion's message to the texture it is drawn from.
struct SlotImage {
  /// The image taken at the latest message, owned by the slot until it is uploaded or given up.
  std::optional<PF_EffectWorld> taken;
  /// An image was taken and not yet uploaded. With nothing in `taken` the take failed.
  bool pending = false;
  /// Size in pixels of the latest image taken.
  A_long width = 0;
  A_long height = 0;
  /// Opacity in the latest record.
  double sentOpacity = 0.0;

  /// Rectangle texture that holds the latest upload, 0 before the first; reused for later ones.
  GLuint texture = 0;
  /// The record's opacity as it stood at the latest upload: what pieces are drawn with.
  double opacity = 0.0;
};

/// What the companion at one place of the effect stack last sent.
struct Slot {
  /// Empty unless an active companion was at the slot's position when the latest message arrived.
  std::vector<PieceQuad> quads;
  std::array<SlotImage, kImageFamilies.size()> images;
};

/// What an instance knows of its layer's pieces; kept from frame to frame.
struct Scene {
  /// A command is at work on it, which refers to its slots across host calls: no other command may
  /// change or release them. Set by a ScopedFlag alone.
  bool isInUse = false;
  /// Slot p belongs to place p of the layer's effect stack. Never shrinks.
  std::vector<Slot> slots;
  /// By place in the effect stack: the number, from 0, of the active companion there, else -1.
  std::vector<A_long> boneOrdinal;
};

}  // namespace plugin
