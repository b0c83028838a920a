#pragma once

#include <vector>

#include "standin/host/host.h"

namespace check {

/// Companions whose pieces lie on one another in different colours, so that frames show which
/// companion the plug-in numbered as which bone: the one whose slider is moved to the front is
/// visible.
class BoneNumbers {
 public:
  /// The colour of a companion, by a number of 1 to 250 of the caller's choice.
  static tarvo::Rgba ColourOf(int companion);
  /// Gives the companion one piece and an image in its colour, all over a small square.
  static void SetUpBone(standin::Companion& companion, int number);
  /// The numbers of the companions that are seen as bone 1, bone 2 …, as many as are asked for;
  /// 0 where none is. The sliders of those bones are 0 afterwards. REQUIRES: at most 25.
  static std::vector<int> Seen(standin::Host& host, standin::RendererInstance& renderer, int bones);
};

}  // namespace check
