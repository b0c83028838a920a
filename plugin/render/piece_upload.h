#pragma once

#include "plugin/render/frame.h"

namespace plugin {

/// Turns every pending image of a slot that has pieces into the slot's texture, with the opacity
/// that goes with it, and disposes of the image's world. Slots without pieces keep theirs pending.
/// [framework's context current]
///
/// Throws PF_Interrupt_CANCEL when an image gets no buffer or when a host call has already failed
/// as it is reached, and the host's code when the host throws while rows are copied; then the
/// scratch world and the images that this slot still holds have been disposed of. Throws
/// PF_Err_BAD_CALLBACK_PARAM without the handle or the world suite; the images then stay pending.
void UploadPieceImages(Frame& frame);

}  // namespace plugin
