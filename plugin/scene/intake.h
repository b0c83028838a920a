#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Answers the general command: files the record at `extra` (a CompanionSlot, at any alignment) in
/// the slot of its sender's place, takes its new images, numbers the layer's active companions
/// afresh and empties the slots of all others. In the sender's memory only the two newImage bytes
/// change, each after its image was taken or the host failed to copy it.
///
/// Returns 0, also without sequence data; PF_Err_BAD_CALLBACK_PARAM for a record that makes no
/// sense, and while another command is at work on this instance (nothing is changed then); or the
/// first failed host call's code, that of a disposal of an image which was still pending counting
/// last. The record is filed all the same. Throws PF_Err_BAD_CALLBACK_PARAM for a suite that the
/// host does not hand out; what comes before the first use of that suite is done then, and what
/// comes after is not.
PF_Err CompletelyGeneral(PF_InData& in, void* extra);

}  // namespace plugin
