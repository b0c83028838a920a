// Soak tests: many frames, instances and library loads, in which nothing may grow.

#include <cstdint>
#include <functional>
#include <sstream>
#include <string>

#include "check/support/pieces.h"
#include "check/support/plugin_under_check.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "check/support/settings.h"
#include "check/support/usage.h"

namespace check::soak {
namespace {

constexpr Box kSmallArea{.left = 0, .top = 0, .width = 24, .height = 20};
/// Measurements of one run.
constexpr int kSteps = 30;
/// Apparent growth that is tolerated over the second half of a run: caches of OpenGL's and of the
/// host's. It does not depend on the length of a run, so a long one detects smaller leaks.
constexpr double kKilobytesOfNoise = 512;
constexpr double kHandlesOfNoise = 0.05;
constexpr double kTexturesOfNoise = 0.05;

std::string Text(double number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

class Soak : public ::testing::Test {
 protected:
  /// Runs `rounds` rounds, in full length or a small part of it, and expects that
  /// nothing grows.
  void Run(int shortRounds, int longRounds, const std::function<void(int round)>& runRound) {
    const int rounds = TheSettings().isLong ? longRounds : shortRounds;
    Slope memory;
    Slope handles;
    Slope textures;
    for (int round = 0; round < rounds && !HasFailure(); ++round) {
      runRound(round);
      if ((round + 1) % (rounds / kSteps) != 0) {
        continue;
      }
      const Usage usage = Usage::Now();
      memory.Add(usage.kilobytes);
      handles.Add(usage.handles);
      if (TheSettings().glTextures) {
        textures.Add(TheSettings().glTextures());
      }
    }
    const int roundsPerStep = rounds / kSteps;
    RecordProperty("rounds", std::to_string(rounds));
    RecordProperty("memory, bytes a round", Text(memory.PerStep() * 1024 / roundsPerStep));
    RecordProperty("handles a step", Text(handles.PerStep()));
    if (TheSettings().glTextures) {
      RecordProperty("textures a step", Text(textures.PerStep()));
      EXPECT_LT(textures.PerStep(), kTexturesOfNoise);
    }
    EXPECT_LT(memory.PerStep() * kSteps / 2, kKilobytesOfNoise);
    EXPECT_LT(handles.PerStep(), kHandlesOfNoise);
  }

  /// Two bones, on a host that keeps little itself.
  static void Prepare(TestRig& rig) {
    rig.host.injector.KeepLog(false);
    rig.host.tracker.LimitRetired(100);
    for (std::uint32_t bone = 0; bone < 2; ++bone) {
      rig.AddBone(Pattern(8, 8, bone), WarpedPieces(bone, 2, kSmallArea, 8, 8));
    }
  }
};

CHECK_F(Soak, FramesDoNotLeak,
        "Rendering frames of a rig that moves and changes its images grows neither memory nor "
        "handles.") {
  TestRig rig(PluginUnderCheck(), {.inspectPixels = false});
  Prepare(rig);
  Run(5'000, 100'000, [&](int round) {
    const std::uint32_t seed = TheSettings().seed + static_cast<std::uint32_t>(round);
    standin::Companion& bone = *rig.ActiveCompanions()[seed % 2];
    bone.pieces = WarpedPieces(seed, 1 + round % 4, kSmallArea, 8, 8);
    if (round % 5 == 0) {
      bone.imageA.Set(Pattern(8 + round % 3, 8, seed));
    }
    if (round % 50 == 0) {
      rig.SetFast(round % 100 == 0);
    }
    rig.Send();
    rig.Render();
  });
  EndHostInOrder(rig.host);
}

CHECK_F(Soak, InstancesDoNotLeak,
        "Adding, rendering, duplicating and removing instances grows neither memory nor handles.") {
  TestRig rig(PluginUnderCheck(), {.inspectPixels = false});
  Prepare(rig);
  Run(600, 10'000, [&](int /*round*/) {
    standin::RendererInstance& instance = rig.host.AddRenderer(rig.layer);
    standin::Companion& bone = *rig.ActiveCompanions().front();
    bone.SendImagesAgain();
    EXPECT_TRUE(rig.host.Send(bone, instance).tookA);
    EXPECT_TRUE(rig.host.Render(instance).command.Ok());
    bone.SendImagesAgain();
    EXPECT_TRUE(rig.host.Send(bone, instance).tookA);  // and is pending
    standin::RendererInstance& copy = rig.host.Duplicate(instance);
    EXPECT_TRUE(rig.host.Remove(copy).Ok());
    EXPECT_TRUE(rig.host.Remove(instance).Ok());
  });
  EndHostInOrder(rig.host);
}

CHECK_F(Soak, LibraryLoadsDoNotLeak,
        "Loading, setting up, rendering, setting down and unloading the plug-in repeatedly leaks "
        "nothing.") {
  if (PluginFile().empty()) {
    GTEST_SKIP() << "the plug-in is linked in";
  }
  Run(60, 1'000, [&](int /*round*/) {
    ReloadPlugin();
    TestRig rig(PluginUnderCheck(), {.inspectPixels = false});
    Prepare(rig);
    rig.Send();
    rig.Render();
    EndHostInOrder(rig.host);
  });
}

}  // namespace
}  // namespace check::soak
