#pragma once

#include <vector>

#include "plugin/gl/framework.h"
#include "plugin/host/host_calls.h"
#include "plugin/host/host_world.h"
#include "plugin/render/area.h"
#include "plugin/scene/scene.h"
#include "sdk/effect.h"

namespace plugin {

/// A piece in the order of drawing.
struct DrawPiece {
  /// In the scene, which takes no message while it is being drawn (Scene::isInUse).
  const PieceQuad* quad;
  /// Lower is nearer to the viewer.
  double depth;
  std::size_t slot;
  ImageFamily family;
  /// Needs an ownership test in an exact frame (MarkContestedPieces).
  bool isContested = false;
};

/// Everything that one render call holds; its stages take it.
struct Frame {
  Frame(PF_InData& inData, PF_OutData& outData, PF_ParamDef* const* parameters,
        PF_EffectWorld& outputWorld, HostCalls& hostCalls, Scene& instanceScene);

  /// All images of the scene in one order: how many there are, and the index of a piece's.
  [[nodiscard]] std::size_t ImageCount() const {
    return scene.slots.size() * kImageFamilies.size();
  }
  [[nodiscard]] static std::size_t ImageIndex(const DrawPiece& piece) {
    return piece.slot * kImageFamilies.size() + piece.family;
  }
  [[nodiscard]] const SlotImage& ImageOf(const DrawPiece& piece) const {
    return scene.slots[piece.slot].images[piece.family];
  }

  PF_InData& in;
  PF_OutData& out;
  PF_ParamDef* const* params;
  PF_EffectWorld& output;
  HostCalls& host;
  Scene& scene;

  /// From full-resolution layer pixels to pixels of the current resolution.
  double scaleX;
  double scaleY;
  A_long outWidth;
  A_long outHeight;
  /// Without ownership maps: overlapping pieces of one image all show.
  bool fastTransparency;

  /// The frame is read back into it.
  HostWorld scratchWorld;
  /// Deepest first.
  std::vector<DrawPiece> drawList;
};

/// Stops the render if a framework operation failed: its text becomes the message, shown to the
/// user, and PF_Err_INTERNAL_STRUCT_DAMAGED is thrown.
void RequireFramework(Frame& frame, AESDK_OpenGL::AESDK_OpenGL_Err code);

}  // namespace plugin
