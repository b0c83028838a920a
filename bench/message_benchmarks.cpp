#include <algorithm>
#include <cstddef>
#include <memory>
#include <random>
#include <vector>

#include "bench/benchmarks.h"
#include "bench/hosted_rig.h"
#include "bench/measure.h"
#include "plugin/host/process.h"
#include "plugin/host/suite_handler.h"
#include "plugin/render/contested_pieces.h"
#include "plugin/render/draw_list.h"
#include "sdk/aegp_suites.h"
#include "tests/support/still_frame.h"

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

/// Frames of a scene whose images are there, with bones that run through the whole depth.
class SceneToSort {
 public:
  explicit SceneToSort(std::size_t bones) : still_(TheHost().InputRecord(nullptr)) {
    still_.scene.slots.resize(bones);
    for (std::size_t bone = 0; bone < bones; ++bone) {
      const auto number = static_cast<A_long>(bone);
      still_.scene.boneOrdinal.push_back(number);
      ParameterAt(plugin::StartZIndex(number)) = kDeep;
      ParameterAt(plugin::EndZIndex(number)) = -kDeep;
      plugin::SlotImage& image = still_.scene.slots[bone].images[plugin::kImageA];
      image.texture = 1;
      image.width = image.height = kLargest;
    }
  }

  static constexpr double kDeep = 100.0;

  [[nodiscard]] std::vector<PieceQuad>& Pieces(std::size_t bone) {
    return still_.scene.slots[bone].quads;
  }
  plugin::Frame MakeFrame() { return still_.Make(); }

 private:
  static constexpr A_long kLargest = 16'384;

  double& ParameterAt(A_long index) {
    return still_.parameters[static_cast<std::size_t>(index)].u.fs_d.value;
  }

  check::StillFrame still_;
};

/// One bone's pieces at random places along it.
std::shared_ptr<SceneToSort> RandomScene() {
  auto scene = std::make_shared<SceneToSort>(1);
  std::mt19937 generator(7);
  for (int piece = 0; piece < kPiecesToSort; ++piece) {
    PieceQuad quad{};
    quad.boneT = static_cast<double>(generator()) / 4294967296.0;
    scene->Pieces(0).push_back(quad);
  }
  return scene;
}

/// Limbs cut into as many slices.
std::shared_ptr<SceneToSort> SlicedScene() {
  auto scene = std::make_shared<SceneToSort>(kBones);
  const Rig rig = Limbs(kFullHd, Slicing::kFolded, kPiecesToSort / kBones);
  for (std::size_t bone = 0; bone < rig.bones.size(); ++bone) {
    scene->Pieces(bone) = rig.bones[bone].pieces;
  }
  return scene;
}

}  // namespace

MeasurePair Intake() {
  return [hosted = std::make_shared<HostedRig>(Crowd())] {
    Pair pair;
    for (int message = 0; message < kMessages; ++message) {
      pair.measured += hosted->TimeMessage();
      pair.baseline += hosted->TimeMessage(OnlyHostCalls);
    }
    return pair;
  };
}

/// Depths are worked out on both sides.
MeasurePair Sort() {
  return [scene = RandomScene()] {
    Pair pair;
    std::vector<plugin::DrawPiece> measured;
    const plugin::Frame frame = scene->MakeFrame();
    pair.measured =
        Milliseconds([&] { measured = plugin::BuildDrawList(frame.scene, frame.params); });
    std::vector<plugin::DrawPiece> baseline = measured;
    std::ranges::sort(baseline, {}, &plugin::DrawPiece::quad);  // as they were before
    pair.baseline = Milliseconds([&] {
      for (plugin::DrawPiece& piece : baseline) {
        const double t = piece.quad->boneT;
        piece.depth = 1e6 * SceneToSort::kDeep * (1.0 - t) - 1e6 * SceneToSort::kDeep * t;
      }
      std::sort(baseline.begin(), baseline.end(),
                [](const auto& a, const auto& b) { return a.depth > b.depth; });
    });
    return pair;
  };
}

MeasurePair Contested() {
  return [scene = SlicedScene()] {
    plugin::Frame frame = scene->MakeFrame();
    Pair pair;
    pair.baseline =
        Milliseconds([&] { frame.drawList = plugin::BuildDrawList(frame.scene, frame.params); });
    pair.measured = Milliseconds([&] { plugin::MarkContestedPieces(frame, 8); });
    return pair;
  };
}

}  // namespace bench
