#pragma once

#include "sdk/aegp.h"
#include "sdk/effect.h"

namespace sample {

/// The sending half of a companion effect: one bone that carries one square piece of one colour. A
/// real companion keeps this beside its sequence data. It sends when its pieces change and when the
/// renderer asks for it, by counting up the companion's parameter TARVO_NUDGE_PARAMETER.
class SampleCompanion {
 public:
  /// `pluginId` is what AEGP_RegisterWithAEGP gave the companion at global set-up.
  SampleCompanion(AEGP_PluginID pluginId, PF_Pixel colour) : id_(pluginId), colour_(colour) {}

  /// Sends the bone to the renderer on the companion's own layer; the square's corner lies at left
  /// and top, in pixels of the layer. `in` is the record of the command under which the host called
  /// the companion, `place` the companion's own in the effect stack, from 0. The first failure of
  /// the host or of the renderer is the result; a layer without a renderer is none.
  A_Err Send(const PF_InData& in, A_long place, double left, double top);

  /// True until the renderer has the image: it goes with the next record.
  [[nodiscard]] bool ImageIsNew() const { return imageIsNew_; }
  /// For a renderer that has no image: all have lost theirs when a project was opened, one that was
  /// duplicated has too, and one that was just applied never had any.
  void SendImageAgain() { imageIsNew_ = true; }

 private:
  AEGP_PluginID id_;
  PF_Pixel colour_;
  bool imageIsNew_ = true;
  A_long place_ = -1;  ///< of the latest record
};

}  // namespace sample
