// The size and origin that the plug-in asks for.

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <vector>

#include "check/support/host_test.h"
#include "check/support/requirement.h"

namespace check::extent {
namespace {

using standin::Host;
using Frame = standin::FrameRequest;
using Extent = HostTest;

struct ExtentCase {
  const char* what;
  std::vector<std::array<double, 2>> corners;
  Frame layer;
  A_long width;
  A_long height;
  PF_Point origin;
};

/// Pieces with these corners, four each; the last one fills up.
std::vector<PieceQuad> PiecesWith(const std::vector<std::array<double, 2>>& corners) {
  std::vector<PieceQuad> pieces;
  for (std::size_t at = 0; at < corners.size(); at += 4) {
    PieceQuad& piece = pieces.emplace_back();
    for (std::size_t corner = 0; corner < 4; ++corner) {
      const auto& [x, y] = corners[std::min(at + corner, corners.size() - 1)];
      piece.corners[corner][0] = x;
      piece.corners[corner][1] = y;
    }
  }
  return pieces;
}

CHECK_F(Extent, EnclosesThePiecesWithAMargin,
        "The output encloses all pieces with a margin of 5 % a side, at the frame's resolution, "
        "whatever their "
        "corners are; without pieces it is the layer in full size.") {
  const std::vector<std::array<double, 2>> quad{{10, 20}, {110, 20}, {110, 70}, {10, 70}};
  const std::vector<std::array<double, 2>> wide{{-50.25, -10}, {30, -10}, {30, 90}, {-50.25, 90}};
  const double huge = 1e300;
  const double none = std::numeric_limits<double>::quiet_NaN();
  const Frame full{};
  const Frame half{.downsampleX = 2, .downsampleY = 2};
  const Frame flat{.downsampleX = 1, .downsampleY = 4};
  const Frame odd{.downsampleX = 2, .downsampleY = 2, .downsampleNumerator = 3};
  const Frame shifted{.preEffectOriginX = 30, .preEffectOriginY = 40};
  const ExtentCase cases[] = {
      {"no piece", {}, full, 1920, 1080, {0, 0}},
      {"no piece, half resolution", {}, half, 1920, 1080, {0, 0}},
      {"no piece, shifted", {}, shifted, 1920, 1080, {-30, -40}},
      {"one quad", quad, full, 110, 56, {-5, -17}},
      {"half resolution", quad, half, 56, 29, {-2, -8}},
      {"quarter height", quad, flat, 110, 15, {-5, -4}},
      {"numerators beside 1", quad, odd, 56, 29, {-2, -8}},
      {"shifted", quad, shifted, 110, 56, {-35, -57}},
      {"single precision", wide, full, 90, 110, {55, 15}},
      // Found by search: a bound lies on a whole pixel, or just beside it where a step of the
      // margin is worked out, or kept, in the other precision.
      {"a spread in single precision", {{518.98, 10}, {8858.58, 20}}, full, 9174, 12, {-102, -9}},
      {"a margin in double", {{3081.51, 10}, {29391.71, 20}}, full, 28'942, 12, {-1766, -9}},
      {"a bound in single precision",
       {{1809.027, 10}, {4669.567, 20}},
       full,
       3147,
       12,
       {-1666, -9}},
      {"a point between pixels", {{3.5, 4.5}}, full, 1, 1, {-3, -4}},
      {"a point", {{3, 4}}, full, 0, 0, {-3, -4}},
      {"a corner that is no number", {{10, 20}, {none, 5}, {110, 70}}, full, 110, 56, {-5, -17}},
      {"nothing but such corners", {{none, 5}}, full, 1920, 1080, {0, 0}},
      {"beyond single precision",
       {{-huge, 0}, {huge, 10}},
       full,
       30'000,
       12,
       {std::numeric_limits<A_long>::max(), 1}},
      {"taller than any image", {{0, -20'000}, {10, 20'000}}, full, 12, 30'000, {1, 22'000}},
  };
  Host& host = StartHost();
  for (const ExtentCase& expected : cases) {
    standin::Layer& layer = host.project.AddComposition("Comp").AddLayer("Layer", 1920, 1080);
    auto& renderer = host.AddRenderer(layer);
    auto& bone = host.AddCompanion(layer, "Bone");
    auto& empty = host.AddCompanion(layer, "Empty");  // adds nothing
    bone.pieces = PiecesWith(expected.corners);
    EXPECT_TRUE(host.Send(bone, renderer).command.Ok());
    EXPECT_TRUE(host.Send(empty, renderer).command.Ok());
    const standin::FrameExtent extent = host.FrameSetup(renderer, expected.layer);
    EXPECT_EQ(extent.width, expected.width) << expected.what;
    EXPECT_EQ(extent.height, expected.height) << expected.what;
    EXPECT_EQ(extent.originX, expected.origin.h) << expected.what;
    EXPECT_EQ(extent.originY, expected.origin.v) << expected.what;
  }
}

}  // namespace
}  // namespace check::extent
