#include <algorithm>
#include <memory>
#include <random>

#include "bench/benchmarks.h"
#include "bench/hosted_rig.h"
#include "bench/measure.h"
#include "plugin/host/parameters.h"
#include "plugin/host/process.h"
#include "plugin/host/suite_handler.h"
#include "plugin/render/draw_list.h"
#include "sdk/aegp_suites.h"

namespace bench {
namespace {

constexpr int kMessages = 200;
constexpr int kEffects = 25;
constexpr int kPiecesOfMessage = 100;
constexpr int kPiecesToSort = 10'000;

/// What a message takes at the least: a copy of its pieces, and every question to the host.
PF_Err OnlyHostCalls(PF_Cmd /*command*/, PF_InData* in, PF_OutData* /*out*/,
                     PF_ParamDef* /*params*/[], PF_LayerDef* /*output*/, void* extra) {
  const auto& record = *static_cast<const CompanionSlot*>(extra);
  static std::vector<PieceQuad> copy;
  copy = std::vector<PieceQuad>(record.quads.first, record.quads.last);

  plugin::SuiteHandler suites(in->pica_basicP);
  AEGP_LayerH layer = nullptr;
  A_long count = 0;
  suites.Get<AEGP_PFInterfaceSuite1>().AEGP_GetEffectLayer(in->effect_ref, &layer);
  suites.Get<AEGP_EffectSuite3>().AEGP_GetLayerNumEffects(layer, &count);
  const auto& effects = suites.Get<AEGP_EffectSuite2>();
  for (A_long position = 0; position < count; ++position) {
    AEGP_EffectRefH effect = nullptr;
    AEGP_InstalledEffectKey key = 0;
    AEGP_EffectFlags flags = AEGP_EffectFlags_NONE;
    char name[64]{};
    effects.AEGP_GetLayerEffectByIndex(plugin::gPluginId, layer, position, &effect);
    effects.AEGP_GetInstalledKeyFromLayerEffect(effect, &key);
    effects.AEGP_GetEffectMatchName(key, name);
    effects.AEGP_GetEffectFlags(effect, &flags);
    effects.AEGP_DisposeEffect(effect);
  }
  return PF_Err_NONE;
}

/// The plug-in and companions that fill up the stack, each with the same number of pieces.
Rig Crowd() {
  Rig rig = Field((kEffects - 1) * kPiecesOfMessage, 0.1);
  rig.bones.resize(kEffects - 1);
  for (Bone& bone : rig.bones) {
    bone.pieces.resize(kPiecesOfMessage, bone.pieces.front());
  }
  return rig;
}

/// One slot of pieces at random places along a bone that runs through the whole depth.
plugin::Scene RandomScene() {
  plugin::Scene scene;
  scene.slots.resize(1);
  scene.boneOrdinal = {0};
  scene.slots.front().images[plugin::kImageA].texture = 1;
  std::mt19937 generator(7);
  for (int piece = 0; piece < kPiecesToSort; ++piece) {
    PieceQuad quad{};
    quad.boneT = static_cast<double>(generator()) / 4294967296.0;
    scene.slots.front().quads.push_back(quad);
  }
  return scene;
}

/// The plug-in's parameters with a first bone of this depth.
struct Parameters {
  Parameters() : definitions(plugin::PARAM_COUNT) {
    definitions[static_cast<std::size_t>(plugin::StartZIndex(0))].u.fs_d.value = 100.0;
    definitions[static_cast<std::size_t>(plugin::EndZIndex(0))].u.fs_d.value = -100.0;
    for (PF_ParamDef& definition : definitions) {
      pointers.push_back(&definition);
    }
  }

  std::vector<PF_ParamDef> definitions;
  std::vector<PF_ParamDef*> pointers;
};

}  // namespace

PlayPair Intake() {
  return [hosted = std::make_shared<HostedRig>(Crowd())] {
    Pair pair;
    for (int message = 0; message < kMessages; ++message) {
      pair.ours += hosted->TimeMessage();
      pair.theirs += hosted->TimeMessage(OnlyHostCalls);
    }
    return pair;
  };
}

PlayPair Sort() {
  const auto parameters = std::make_shared<Parameters>();
  return [scene = RandomScene(), parameters] {
    Pair pair;
    std::vector<plugin::DrawPiece> ours;
    pair.ours =
        Milliseconds([&] { ours = plugin::BuildDrawList(scene, parameters->pointers.data()); });
    std::vector<plugin::DrawPiece> theirs = ours;
    std::ranges::sort(theirs, {}, &plugin::DrawPiece::quad);  // as they were before
    pair.theirs = Milliseconds([&] {
      std::sort(theirs.begin(), theirs.end(),
                [](const auto& a, const auto& b) { return a.depth > b.depth; });
    });
    return pair;
  };
}

}  // namespace bench
