#pragma once

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "check/support/plugin_under_check.h"
#include "standin/core/companion.h"
#include "standin/host/host.h"
#include "tool/reference/overlap_picture.h"

namespace check {

/// Ends the host's business with nothing failing any more, and expects that it was in order:
/// nothing leaked, and no violation noted but what `isExcused` accepts.
void EndHostInOrder(
    standin::Host& host, const std::function<bool(const std::string& violation)>& isExcused =
                             [](const auto&) { return false; });

/// A host with the plug-in applied to one layer, at the top of its stack; a small language for
/// tests:
///
///     TestRig rig(entryPoint);
///     rig.AddBone(image, pieces);
///     rig.SetDepth(1, 0, -3);
///     rig.Send();
///     EXPECT_EQ(rig.Render().picture, …);
///
/// What should go well is expected to, here.
class TestRig {
 public:
  explicit TestRig(PF_EntryPoint entryPoint, standin::HostOptions options = {});

  /// Another companion, at the bottom of the stack unless `position` says otherwise.
  standin::Companion& AddBone(const tarvo::Picture& image, std::vector<PieceQuad> pieces,
                              int position = -1);
  /// Start Z and end Z of a bone, counted from 1.
  void SetDepth(int bone, double start, double end);
  /// "Fast transparency" on or off.
  void SetFast(bool fast);
  /// Every active companion sends what it holds.
  void Send();
  /// Renders, and expects success.
  standin::RenderResult Render(const standin::FrameRequest& request = {});

  /// The reference model's picture of the companions that are active now, in a frame of the
  /// picture's size and origin. Images and opacities are those that the companions hold. Where an
  /// effect before this one has grown the layer, the request says by how much.
  [[nodiscard]] tarvo::OverlapPicture Expected(const tarvo::Picture& like,
                                               const standin::FrameRequest& request = {}) const;
  /// The active companions, from the top of the stack.
  [[nodiscard]] std::vector<standin::Companion*> ActiveCompanions() const;

  standin::Host host;
  standin::Layer& layer;
  standin::RendererInstance& renderer;

 private:
  /// Starts the plug-in and makes the layer.
  standin::Layer& StartAndMakeLayer();
};

/// A test with one rig, whose leaks and API violations are checked at its end in any case.
class RigTest : public ::testing::Test {
 protected:
  explicit RigTest(PF_EntryPoint entryPoint = PluginUnderCheck()) : rig(entryPoint) {}
  void TearDown() override { EndHostInOrder(rig.host); }

  TestRig rig;
};

}  // namespace check
