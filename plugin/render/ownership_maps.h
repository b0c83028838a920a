#pragma once

#include <vector>

#include "plugin/render/frame.h"

namespace plugin {

/// Which piece of an image is in front, pixel by pixel of a tile, where pieces of the image may
/// share pixels: the horizontal and the vertical texture coordinate of the front-most piece that
/// covers the pixel with an alpha of at least one half, packed into the colours of two textures.
///
/// The contested pieces of an image are drawn from the nearest to the deepest with blending that
/// keeps the first fragment of each pixel, once for each coordinate, and the box that they cover is
/// copied from the target into a texture. In the second colour pass a fragment of a contested piece
/// is dropped where its own coordinate differs from the one in the map: there another piece of its
/// image is in front. The cost for each image is two draws of its contested pieces and two copies
/// of their box. Nothing leaves the graphics card.
///
/// Made for one tile; the textures are kept for the next one. [framework's context current]
class OwnershipMaps {
 public:
  /// The two maps of one image, and the pixel of the target that their first pixel is.
  struct Pair {
    GLuint w = 0;
    GLuint h = 0;
    A_long x = 0;
    A_long y = 0;
  };

  /// Maps for a frame of so many images (Frame::ImageCount), none made yet.
  explicit OwnershipMaps(std::size_t imageCount) : pairs_(imageCount) {}

  /// The maps that a piece needs in this tile; null if none.
  [[nodiscard]] const Pair* For(const DrawPiece& piece) const {
    const Pair& pair = pairs_[Frame::ImageIndex(piece)];
    return piece.isContested && pair.w != 0 ? &pair : nullptr;
  }

  void Add(const DrawPiece& piece, const Pair& pair) { pairs_[Frame::ImageIndex(piece)] = pair; }

 private:
  std::vector<Pair> pairs_;
};

/// Renders the maps for one tile; with fast transparency none are made. Stops the render like
/// RequireFramework if the framework fails. [framework's context current, camera aimed]
OwnershipMaps RenderOwnershipMaps(Frame& frame, const Tile& tile);

/// Deletes the textures that maps were kept in, or forgets them where their context is not current.
void ReleaseMapTextures();

}  // namespace plugin
