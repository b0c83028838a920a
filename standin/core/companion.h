#pragma once

#include <vector>

#include "base/image/picture.h"
#include "standin/core/project.h"
#include "tarvo/companion.h"

namespace standin {

/// The index of the companion's parameter that is incremented whenever the renderer asks it to send
/// again.
inline constexpr int kNudgeParameter = TARVO_NUDGE_PARAMETER;

/// One image of a companion, and whether the renderer has yet to be given it.
struct CompanionImage {
  /// A new image, sent with the next record.
  void Set(tarvo::Picture newPicture) {
    picture = std::move(newPicture);
    isNew = true;
  }

  tarvo::Picture picture;
  double opacity = 1.0;
  bool isNew = false;
};

/// An instance of the companion effect: one bone of the rig. Its pieces and images travel in a
/// CompanionSlot each time it sends (Host::Send).
class Companion : public Effect {
 public:
  Companion(Layer& layer, const std::string& boneName);

  [[nodiscard]] double NudgeCounter() const { return parameters[kNudgeParameter].Value(); }
  /// Marks both images as new again: a renderer whose scene is empty has lost them.
  void SendImagesAgain();

  std::vector<PieceQuad> pieces;
  CompanionImage imageA;
  CompanionImage imageB;
};

}  // namespace standin
