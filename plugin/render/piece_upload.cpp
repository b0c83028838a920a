#include "plugin/render/piece_upload.h"

#include <cstring>
#include <optional>
#include <utility>

#include "plugin/host/host_memory.h"
#include "plugin/render/pixel_rows.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {
namespace {

/// Copies the rows of `world` back to back into `packed`. Returns 0, PF_Interrupt_CANCEL if the
/// host gives no address for a row, or what it throws.
PF_Err PackRows(const Frame& frame, PF_EffectWorld& world, A_u_char* packed) {
  const A_HandleSize rowBytes = PackedBytes(world.width, 1);
  return Guarded([&] {
    for (A_long row = 0; row < world.height; ++row, packed += rowBytes) {
      const A_u_char* const source = RowOf(*frame.in.utils, world, row);
      if (source == nullptr) {
        return PF_Interrupt_CANCEL;
      }
      std::memcpy(packed, source, rowBytes);
    }
    return PF_Err_NONE;
  });
}

void DefineTexture(SlotImage& image, const void* packed) {
  image.opacity = image.sentOpacity;
  if (image.texture == 0) {
    glGenTextures(1, &image.texture);
  }
  DefineRectangleTexture(image.texture, image.taken->width, image.taken->height, packed, GL_LINEAR);
}

/// Uploads a taken image. Returns 0, or the code with which the render ends; the texture is then as
/// it was.
PF_Err Upload(Frame& frame, SlotImage& image) {
  HostMemory buffer(frame.host.Suites(), PackedBytes(image.taken->width, image.taken->height));
  auto* const packed = buffer ? static_cast<A_u_char*>(buffer.Lock()) : nullptr;
  if (packed == nullptr) {
    return PF_Interrupt_CANCEL;
  }
  if (const PF_Err stopped = PackRows(frame, *image.taken, packed); stopped != 0) {
    return stopped;
  }
  if (!frame.host.Ok()) {
    return PF_Interrupt_CANCEL;
  }
  DefineTexture(image, packed);
  return PF_Err_NONE;
}

/// REQUIRES: the suite that disposes has been acquired. An image whose take failed has nothing to
/// upload: its mark alone is cleared.
void Finish(Frame& frame, SlotImage& image) {
  std::optional<PF_EffectWorld> uploaded = std::exchange(image.taken, std::nullopt);
  image.pending = false;
  if (uploaded) {
    frame.host.Run(&PF_WorldSuite1::dispose_world, frame.in.effect_ref, &*uploaded);
  }
}

/// Disposes of what the failed render would leave behind: the scratch world and the slot's images.
/// REQUIRES: the suite that disposes has been acquired.
void DiscardImages(Frame& frame, Slot& slot) {
  frame.scratchWorld.Dispose();
  for (SlotImage& image : slot.images) {
    if (image.taken) {
      frame.host.RunCleanup(&PF_WorldSuite1::dispose_world, frame.in.effect_ref, &*image.taken);
    }
    image.taken.reset();
    image.pending = false;
  }
}

}  // namespace

void UploadPieceImages(Frame& frame) {
  for (Slot& slot : frame.scene.slots) {
    if (slot.quads.empty()) {
      continue;
    }
    for (SlotImage& image : slot.images) {
      if (!image.pending) {
        continue;
      }
      // Before anything is dropped: without it the worlds stay recorded for the next frame.
      frame.host.Need(&PF_WorldSuite1::dispose_world);
      const PF_Err stopped = image.taken ? Upload(frame, image) : PF_Err_NONE;
      if (stopped != 0) {
        DiscardImages(frame, slot);
        throw PF_Err{stopped};
      }
      Finish(frame, image);
    }
  }
}

}  // namespace plugin
