#include "check/support/bone_numbers.h"

#include <gtest/gtest.h>

#include "check/support/parameters.h"
#include "check/support/pieces.h"

namespace check {
namespace {

constexpr int kBoneSide = 8;  // pixels; what is looked at lies in the middle
constexpr double kInFront = -1000;

void SetDepth(standin::Host& host, standin::RendererInstance& renderer, int bone, double depth) {
  EXPECT_TRUE(host.SetParameter(renderer, StartZ(bone), depth).Ok());
  EXPECT_TRUE(host.SetParameter(renderer, EndZ(bone), depth).Ok());
}

}  // namespace

tarvo::Rgba BoneNumbers::ColourOf(int companion) {
  return {.red = static_cast<std::uint8_t>(companion), .green = 128, .blue = 0, .alpha = 255};
}

void BoneNumbers::SetUpBone(standin::Companion& companion, int number) {
  companion.imageA.Set(tarvo::Picture(kBoneSide, kBoneSide, ColourOf(number)));
  companion.pieces = {Piece({.left = 0, .top = 0, .width = kBoneSide, .height = kBoneSide},
                            {.left = 1, .top = 1, .width = kBoneSide - 2, .height = kBoneSide - 2},
                            0.5)};
}

std::vector<int> BoneNumbers::Seen(standin::Host& host, standin::RendererInstance& renderer,
                                   int bones) {
  for (int bone = 1; bone <= bones; ++bone) {
    SetDepth(host, renderer, bone, 0);
  }
  std::vector<int> seen;
  const standin::FrameExtent frame{.command = {}, .width = kBoneSide, .height = kBoneSide};
  for (int bone = 1; bone <= bones; ++bone) {
    SetDepth(host, renderer, bone, kInFront);
    const standin::RenderResult result = host.RenderInto(renderer, frame);
    EXPECT_TRUE(result.command.Ok()) << result.command.code << " " << result.command.message;
    SetDepth(host, renderer, bone, 0);
    seen.push_back(result.picture.At(kBoneSide / 2, kBoneSide / 2).red);
  }
  return seen;
}

}  // namespace check
