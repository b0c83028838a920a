// Lives of many frames, instances and loads, in which nothing may grow.

#include <cstdint>
#include <functional>
#include <sstream>
#include <string>

#include "check/support/pieces.h"
#include "check/support/plugin_under_check.h"
#include "check/support/promise.h"
#include "check/support/rig.h"
#include "check/support/settings.h"
#include "check/support/usage.h"

namespace check::long_lives {
namespace {

constexpr check::Box kSmallArea{.left = 0, .top = 0, .width = 24, .height = 20};
/// Measurements of one life.
constexpr int kSteps = 30;
/// What memory may seem to grow over the second half of a life: caches of OpenGL's and of the
/// host's. It does not grow with the length of a life, so a long one tells smaller leaks.
constexpr double kKilobytesOfUnrest = 512;
constexpr double kHandlesOfUnrest = 0.05;
constexpr double kTexturesOfUnrest = 0.05;

std::string InWords(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

class LongLives : public ::testing::Test {
 protected:
  /// Lives `turns` turns, in full length or a small part of it, and expects that
  /// nothing grows.
  void Live(int shortTurns, int longTurns, const std::function<void(int turn)>& liveOneTurn) {
    const int turns = check::TheSettings().isLong ? longTurns : shortTurns;
    check::Slope memory;
    check::Slope handles;
    check::Slope textures;
    for (int turn = 0; turn < turns && !HasFailure(); ++turn) {
      liveOneTurn(turn);
      if ((turn + 1) % (turns / kSteps) != 0) continue;
      const check::Usage usage = check::Usage::Now();
      memory.Add(usage.kilobytes);
      handles.Add(usage.handles);
      if (check::TheSettings().glTextures) textures.Add(check::TheSettings().glTextures());
    }
    const double turnsPerStep = turns / kSteps;
    RecordProperty("turns", std::to_string(turns));
    RecordProperty("memory, bytes a turn", InWords(memory.PerStep() * 1024 / turnsPerStep));
    RecordProperty("handles a step", InWords(handles.PerStep()));
    if (check::TheSettings().glTextures) {
      RecordProperty("textures a step", InWords(textures.PerStep()));
      EXPECT_LT(textures.PerStep(), kTexturesOfUnrest);
    }
    EXPECT_LT(memory.PerStep() * kSteps / 2, kKilobytesOfUnrest);
    EXPECT_LT(handles.PerStep(), kHandlesOfUnrest);
  }

  /// Two bones, on a host that itself remembers little.
  static void Prepare(check::Rig& rig) {
    rig.host.gate.KeepLog(false);
    rig.host.books.RememberDead(100);
    for (std::uint32_t bone = 0; bone < 2; ++bone) {
      rig.AddBone(check::Pattern(8, 8, bone), check::WarpedPieces(bone, 2, kSmallArea, 8, 8));
    }
  }
};

CHECK_F(LongLives, OfFramesGrowNothing,
        "Frame after frame of a rig that moves and changes its images, memory and handles stay as "
        "they are.") {
  check::Rig rig(check::PluginUnderCheck(), {.inspectPixels = false});
  Prepare(rig);
  Live(5'000, 100'000, [&](int turn) {
    const std::uint32_t lot = check::TheSettings().seed + static_cast<std::uint32_t>(turn);
    standin::Companion& bone = *rig.ActiveCompanions()[lot % 2];
    bone.pieces = check::WarpedPieces(lot, 1 + turn % 4, kSmallArea, 8, 8);
    if (turn % 5 == 0) bone.imageA.Set(check::Pattern(8 + turn % 3, 8, lot));
    if (turn % 50 == 0) rig.SetFast(turn % 100 == 0);
    rig.Send();
    rig.Render();
  });
  check::EndHostInOrder(rig.host);
}

CHECK_F(LongLives, OfInstancesGrowNothing,
        "Instances come, draw, are duplicated and go; memory and handles stay as they are.") {
  check::Rig rig(check::PluginUnderCheck(), {.inspectPixels = false});
  Prepare(rig);
  Live(600, 10'000, [&](int /*turn*/) {
    standin::RendererInstance& instance = rig.host.AddRenderer(rig.layer);
    standin::Companion& bone = *rig.ActiveCompanions().front();
    bone.SendImagesAgain();
    EXPECT_TRUE(rig.host.Send(bone, instance).tookA);
    EXPECT_TRUE(rig.host.Render(instance).command.Ok());
    bone.SendImagesAgain();
    EXPECT_TRUE(rig.host.Send(bone, instance).tookA);  // and waits
    standin::RendererInstance& copy = rig.host.Duplicate(instance);
    EXPECT_TRUE(rig.host.Remove(copy).Ok());
    EXPECT_TRUE(rig.host.Remove(instance).Ok());
  });
  check::EndHostInOrder(rig.host);
}

CHECK_F(LongLives, OfLoadsGrowNothing,
        "Loaded, set up, drawn with, set down and unloaded again and again, the plug-in leaves "
        "nothing behind.") {
  if (check::PluginFile().empty()) GTEST_SKIP() << "the plug-in is linked in";
  Live(60, 1'000, [&](int /*turn*/) {
    check::ReloadPlugin();
    check::Rig rig(check::PluginUnderCheck(), {.inspectPixels = false});
    Prepare(rig);
    rig.Send();
    rig.Render();
    check::EndHostInOrder(rig.host);
  });
}

}  // namespace
}  // namespace check::long_lives
