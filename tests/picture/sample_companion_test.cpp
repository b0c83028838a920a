#include "examples/companion/sample_companion.h"

#include <string>
#include <vector>

#include "check/support/rig.h"
#include "sdk/aegp_suites.h"

namespace {

using standin::Kind;
using tarvo::Rgba;

constexpr const char* kUtilities = "AEGP Utility Suite";
constexpr PF_Pixel kRed{255, 200, 0, 0};
constexpr Rgba kShown{200, 0, 0, 255};

/// The sample on a layer with the plug-in: it talks with both by itself.
class SampleCompanionTest : public check::RigTest {
 protected:
  SampleCompanionTest() : effect_(rig.host.AddCompanion(rig.layer, "Sample")) {}

  /// A plug-in number of the companion's own.
  AEGP_PluginID Register() {
    const void* table = nullptr;
    AEGP_PluginID id = 0;
    basic_->AcquireSuite(kUtilities, 11, &table);
    static_cast<const AEGP_UtilitySuite5*>(table)->AEGP_RegisterWithAEGP(nullptr, "QEZ_Tarvo", &id);
    basic_->ReleaseSuite(kUtilities, 11);
    return id;
  }
  A_Err Send(double left, double top) { return Send(left, top, effect_.Position()); }
  A_Err Send(double left, double top, A_long place) {
    PF_InData in{};
    in.pica_basicP = basic_;
    in.effect_ref = effect_.programRef;
    in.time_scale = 25;
    const std::size_t worlds = rig.host.tracker.Count(Kind::kWorld);
    const A_Err err = sample_.Send(in, place, left, top);
    // Whether it was copied or not, the sender's world is disposed of; the plug-in's own one is
    // pending.
    EXPECT_EQ(rig.host.tracker.Count(Kind::kWorld),
              worlds + (sample_.ImageIsNew() ? orphanedWorlds_ : pendingWorlds_));
    EXPECT_TRUE(rig.host.tracker.Balanced());
    return err;
  }
  Rgba PixelAt(int x, int y) {
    const tarvo::Picture picture = rig.Render().picture;
    return picture.At(x + picture.originX, y + picture.originY);
  }

  std::size_t pendingWorlds_ = 1;
  std::size_t orphanedWorlds_ = 0;
  standin::Companion& effect_;

 private:
  SPBasicSuite* basic_ = rig.host.InputRecord(nullptr).pica_basicP;

 protected:
  sample::SampleCompanion sample_{Register(), kRed};
};

TEST_F(SampleCompanionTest, HandsItsImageOverOnceAndMoves) {
  EXPECT_EQ(Send(20, 30), PF_Err_NONE);
  EXPECT_FALSE(sample_.ImageIsNew());
  EXPECT_EQ(PixelAt(36, 46), kShown);

  pendingWorlds_ = 0;  // no image goes with a mere move
  EXPECT_EQ(Send(100, 90), PF_Err_NONE);
  EXPECT_EQ(PixelAt(116, 106), kShown);
}

TEST_F(SampleCompanionTest, KeepsWhatWasNotTakenForTheNextTime) {
  const auto failing = [&](const char* operation) {
    rig.host.injector.FailOperation(operation);
    const A_Err err = Send(20, 30);
    rig.host.injector.FailNothing();
    EXPECT_TRUE(sample_.ImageIsNew()) << operation;
    return err;
  };
  for (const char* operation : {"AEGP_GetEffectLayer", "AEGP_GetLayerNumEffects", "new_world",
                                "AEGP_GetLayerEffectByIndex", "AEGP_GetEffectMatchName",
                                "AEGP_GetInstalledKeyFromLayerEffect", "AEGP_EffectCallGeneric"}) {
    EXPECT_EQ(failing(operation), standin::kInjectedFailure) << operation;
  }
  EXPECT_EQ(failing("AcquireSuite"), PF_Err_BAD_CALLBACK_PARAM);
  EXPECT_EQ(Send(20, 30, -1), PF_Err_BAD_CALLBACK_PARAM);  // refused by the renderer
  EXPECT_TRUE(sample_.ImageIsNew());

  EXPECT_EQ(Send(20, 30), PF_Err_NONE);
  EXPECT_FALSE(sample_.ImageIsNew());
  EXPECT_EQ(PixelAt(36, 46), kShown);
}

/// The renderer clears the flag though it could not copy the image, whose world then has no owner.
TEST_F(SampleCompanionTest, SendsAnImageAgainThatWasLostOnItsWay) {
  rig.host.injector.FailOperation("copy");
  orphanedWorlds_ = 1;
  EXPECT_EQ(Send(20, 30), standin::kInjectedFailure);
  rig.host.injector.FailNothing();
  orphanedWorlds_ = 0;
  EXPECT_TRUE(sample_.ImageIsNew());
  EXPECT_EQ(Send(20, 30), PF_Err_NONE);
  EXPECT_EQ(PixelAt(36, 46), kShown);

  check::EndHostInOrder(rig.host, [](const std::string& violation) {
    return violation.find("left world") != std::string::npos;
  });
  rig.host.tracker.ClearViolations();
}

/// The renderer keeps images by the place of their companions.
TEST_F(SampleCompanionTest, SendsItsImageAgainFromANewPlace) {
  EXPECT_EQ(Send(20, 30), PF_Err_NONE);
  rig.host.AddCompanion(rig.layer, "Other", effect_.Position());
  EXPECT_EQ(Send(20, 30), PF_Err_NONE);
  EXPECT_EQ(PixelAt(36, 46), kShown);
}

}  // namespace
