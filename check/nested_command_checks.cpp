// Commands that come from within a host call of another command.

#include <cstring>

#include "check/support/requirement.h"
#include "check/support/unusual_worlds_test.h"

namespace check::nested_commands {
namespace {

using tarvo::Picture;

class NestedCommands : public UnusualWorldsTest {};

/// The plug-in's own context is current while the host makes the world. The entry point is called
/// as one effect calls another, with no host between.
CHECK_F(NestedCommands, AreHandledDuringARender,
        "A message from within a host call of a render is stored; one to the rendering instance "
        "itself is refused with 516, as is a second frame; the first frame is unchanged, and the "
        "host's context is restored.") {
  standin::RendererInstance& other = rig.host.AddRenderer(rig.layer);
  const auto pieces = WarpedPieces(3, 2, {0, 0, 100, 80}, 8, 8);
  auto record = RecordOf(pieces, 1);
  const auto send = [&](standin::RendererInstance& to, PF_Cmd command) {
    PF_InData in = rig.host.InputRecord(&to);
    PF_OutData out{};
    PF_EffectWorld output{};
    if (command == PF_Cmd_RENDER) {
      EXPECT_EQ(rig.host.worlds.New(8, 8, 0, "second output", &output), PF_Err_NONE);
    }
    const PF_Err result =
        PluginUnderCheck()(command, &in, &out, parameters.data(), &output, &record);
    if (command == PF_Cmd_RENDER) {
      rig.host.worlds.Dispose(&output, "the test");
    }
    return result;
  };
  const A_long before = rig.host.FrameSetup(other).width;
  int asked = 0;
  const Picture picture = RenderWith(good, [&](const auto& host, PF_ProgPtr effect, A_long width,
                                               A_long height, PF_EffectWorld* world) {
    ++asked;
    EXPECT_EQ(send(other, PF_Cmd_COMPLETELY_GENERAL), PF_Err_NONE);
    EXPECT_EQ(send(rig.renderer, PF_Cmd_COMPLETELY_GENERAL), PF_Err_BAD_CALLBACK_PARAM);
    EXPECT_EQ(send(other, PF_Cmd_RENDER), PF_Err_BAD_CALLBACK_PARAM);
    return MakeWorld(host, effect, width, height, world);
  });
  EXPECT_EQ(asked, 1);
  EXPECT_EQ(picture, good);
  EXPECT_TRUE(rig.host.ContextIsCurrent());
  EXPECT_NE(rig.host.FrameSetup(other).width, before);
  EXPECT_EQ(rig.Render().picture, good);
}

/// The slot that the outer message fills is one of a list, which a place far down the stack would
/// move.
CHECK_F(NestedCommands, AreRefusedDuringAMessage,
        "A message from within a host call of another one to the same instance is refused with "
        "516, and the first is stored.") {
  standin::Companion& bone = *rig.ActiveCompanions().front();
  const auto pieces = WarpedPieces(3, 2, {0, 0, 100, 80}, 8, 8);
  auto nested = RecordOf(pieces, 200);
  auto record = RecordOf(bone.pieces, bone.Position());
  PF_EffectWorld image = rig.host.worlds.From(bone.imageA.picture, "image A");
  std::memcpy(record.imageA, &image, sizeof image);
  record.newImageA = 1;
  record.opacityA = 1;
  record.opacityB = 1;
  PF_InData in = rig.host.InputRecord(&rig.renderer);
  PF_OutData out{};
  PF_Err answer = PF_Err_NONE;
  SubstituteWorlds worlds(in.pica_basicP, [&](const auto& host, PF_ProgPtr effect, A_long width,
                                              A_long height, PF_EffectWorld* world) {
    PF_InData again = rig.host.InputRecord(&rig.renderer);
    answer = PluginUnderCheck()(PF_Cmd_COMPLETELY_GENERAL, &again, &out, nullptr, nullptr, &nested);
    return MakeWorld(host, effect, width, height, world);
  });
  in.pica_basicP = worlds.Suites();
  EXPECT_TRUE(
      rig.host.CallWith(PF_Cmd_COMPLETELY_GENERAL, in, out, nullptr, nullptr, &record).Ok());
  EXPECT_EQ(answer, PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(record.newImageA, 0);
  EXPECT_EQ(rig.Render().picture, good);
}

}  // namespace
}  // namespace check::nested_commands
