#pragma once

#include <array>
#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// Which piece of an image is in front, pixel by pixel of a tile: for every image that has a
/// texture, the horizontal and the vertical texture coordinate of the front-most piece that covers
/// the pixel with an alpha of at least one half, packed into the colours of two textures.
///
/// The pieces of an image are drawn from the nearest to the deepest with blending that keeps the
/// first fragment of each pixel, once for each coordinate, and the target is copied into a texture.
/// In the colour passes a fragment is dropped where its own coordinate differs from the one in the
/// map: there another piece of its image is in front. The cost for each image is two draws of its
/// pieces and two copies of the area that they cover.
///
/// Made for one tile, deleted with the object. [framework's context current]
class OwnershipMaps {
 public:
  /// Names of the two maps of one image; 0 where there is none.
  struct Pair {
    GLuint w = 0;
    GLuint h = 0;
  };

  /// Maps for a scene of that many slots, none made yet.
  explicit OwnershipMaps(std::size_t slotCount);
  ~OwnershipMaps();
  OwnershipMaps(OwnershipMaps&&) noexcept = default;
  OwnershipMaps(const OwnershipMaps&) = delete;
  OwnershipMaps& operator=(const OwnershipMaps&) = delete;
  OwnershipMaps& operator=(OwnershipMaps&&) = delete;

  Pair& Of(std::size_t slot, ImageFamily family) { return pairs_[family][slot]; }

 private:
  std::array<std::vector<Pair>, kImageFamilies.size()> pairs_;
};

/// Renders the maps for one tile; with fast transparency none are made. A map for which the host
/// has no buffer stays unmade. Stops the render like RequireFramework if the framework fails.
/// [framework's context current, program in use, camera aimed]
OwnershipMaps RenderOwnershipMaps(Frame& frame, const Tile& tile);

}  // namespace plugin
