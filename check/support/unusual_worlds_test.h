#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "check/support/failed_render_test.h"
#include "sdk/effect_suites.h"

namespace check {

/// What a host makes when it is asked for a world, given its true operation.
using NewWorld = std::function<PF_Err(const PF_WorldSuite1& host, PF_ProgPtr effect, A_long width,
                                      A_long height, PF_EffectWorld* world)>;

/// The host's suites, but for worlds that come out otherwise than they were asked for. One at a
/// time.
class SubstituteWorlds {
 public:
  SubstituteWorlds(SPBasicSuite* basic, NewWorld newWorld) {
    gBasic = basic;
    gNew = std::move(newWorld);
  }
  SPBasicSuite* Suites() { return &suites_; }

 private:
  static SPErr Acquire(const char* name, std::int32_t version, const void** suite) {
    const SPErr result = gBasic->AcquireSuite(name, version, suite);
    if (result == 0 && std::string_view(name) == "PF World Suite") {
      gWorlds = *static_cast<const PF_WorldSuite1*>(*suite);
      *suite = &kWorlds;
    }
    return result;
  }
  static SPErr Release(const char* name, std::int32_t version) {
    return gBasic->ReleaseSuite(name, version);
  }
  static PF_Err New(PF_ProgPtr effect, A_long width, A_long height, PF_NewWorldFlags,
                    PF_EffectWorld* world) {
    return gNew(gWorlds, effect, width, height, world);
  }
  static PF_Err Dispose(PF_ProgPtr effect, PF_EffectWorld* world) {
    return gWorlds.dispose_world(effect, world);
  }

  static inline SPBasicSuite* gBasic = nullptr;
  static inline PF_WorldSuite1 gWorlds{};
  static inline NewWorld gNew;
  static constexpr PF_WorldSuite1 kWorlds{New, Dispose};
  SPBasicSuite suites_{.AcquireSuite = Acquire, .ReleaseSuite = Release};
};

/// Renders for which the host makes other images than it was asked for, or does other work first.
class UnusualWorldsTest : public FailedRenderTest {
 protected:
  UnusualWorldsTest() {
    for (standin::Parameter& each : rig.renderer.parameters) {
      parameters.push_back(&each.definition);
    }
  }

  /// The host's records of a render.
  PF_InData InputRecord(const tarvo::Picture& like) {
    PF_InData in = rig.host.InputRecord(&rig.renderer);
    in.output_origin_x = like.originX;
    in.output_origin_y = like.originY;
    return in;
  }

  /// A frame of the size and place of `like` on a host that makes such worlds; expects success.
  tarvo::Picture RenderWith(const tarvo::Picture& like, NewWorld newWorld) {
    PF_InData in = InputRecord(like);
    SubstituteWorlds worlds(in.pica_basicP, std::move(newWorld));
    in.pica_basicP = worlds.Suites();
    PF_OutData out{};
    PF_EffectWorld output{};
    EXPECT_EQ(rig.host.worlds.New(like.width, like.height, 0, "output", &output), PF_Err_NONE);
    EXPECT_TRUE(
        rig.host.CallWith(PF_Cmd_RENDER, in, out, parameters.data(), &output, nullptr).Ok());
    tarvo::Picture picture = standin::Worlds::ToPicture(output);
    rig.host.worlds.Dispose(&output, "the test");
    picture.originX = like.originX;
    picture.originY = like.originY;
    return picture;
  }

  std::vector<PF_ParamDef*> parameters;
};

/// A world as it was asked for.
inline PF_Err MakeWorld(const PF_WorldSuite1& host, PF_ProgPtr effect, A_long width, A_long height,
                        PF_EffectWorld* world) {
  return host.new_world(effect, width, height, PF_NewWorldFlag_NONE, world);
}

}  // namespace check
