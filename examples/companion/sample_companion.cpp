#include "examples/companion/sample_companion.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "sdk/aegp_suites.h"
#include "sdk/effect_suites.h"
#include "tarvo/companion.h"

namespace sample {
namespace {

constexpr A_long kSide = 32;  // of the image and of the piece, in pixels

/// A suite of the host, given back at the end of the scope.
template <class Suite>
class Held {
 public:
  Held(SPBasicSuite* host, const char* name, A_long version)
      : host_(host), name_(name), version_(version) {
    const void* table = nullptr;
    if (host_->AcquireSuite(name_, version_, &table) == A_Err_NONE) {
      suite_ = static_cast<const Suite*>(table);
    }
  }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;
  ~Held() {
    if (suite_ != nullptr) {
      host_->ReleaseSuite(name_, version_);
    }
  }
  explicit operator bool() const { return suite_ != nullptr; }
  const Suite* operator->() const { return suite_; }

 private:
  SPBasicSuite* host_;
  const char* name_;
  A_long version_;
  const Suite* suite_ = nullptr;
};

/// What sending needs of the host.
struct Host {
  explicit Host(const PF_InData& in)
      : layers(in.pica_basicP, "AEGP PF Interface Suite", 1),
        effects(in.pica_basicP, "AEGP Effect Suite", 3),
        worlds(in.pica_basicP, "PF World Suite", 1) {}
  [[nodiscard]] bool IsComplete() const { return layers && effects && worlds; }

  Held<AEGP_PFInterfaceSuite1> layers;
  Held<AEGP_EffectSuite3> effects;
  Held<PF_WorldSuite1> worlds;
};

A_Err IsRenderer(const Host& host, AEGP_EffectRefH effect, bool& isRenderer) {
  AEGP_InstalledEffectKey key = 0;
  A_char name[kMatchNameBytes] = "";
  A_Err err = host.effects->AEGP_GetInstalledKeyFromLayerEffect(effect, &key);
  if (err == A_Err_NONE) {
    err = host.effects->AEGP_GetEffectMatchName(key, name);
  }
  isRenderer = std::string_view(name) == TARVO_RENDERER_MATCH_NAME;
  return err;
}

/// A reference to the first renderer on the companion's layer, to be disposed of; null for none.
A_Err FindRenderer(const Host& host, const PF_InData& in, AEGP_PluginID id,
                   AEGP_EffectRefH& renderer) {
  AEGP_LayerH layer = nullptr;
  A_long count = 0;
  A_Err err = host.layers->AEGP_GetEffectLayer(in.effect_ref, &layer);
  if (err == A_Err_NONE) {
    err = host.effects->AEGP_GetLayerNumEffects(layer, &count);
  }
  for (A_long index = 0; index < count && err == A_Err_NONE && renderer == nullptr; ++index) {
    AEGP_EffectRefH effect = nullptr;
    err = host.effects->AEGP_GetLayerEffectByIndex(id, layer, index, &effect);
    if (err != A_Err_NONE || effect == nullptr) {
      continue;
    }
    bool isRenderer = false;
    err = IsRenderer(host, effect, isRenderer);
    if (isRenderer && err == A_Err_NONE) {
      renderer = effect;
    } else {
      host.effects->AEGP_DisposeEffect(effect);
    }
  }
  return err;
}

/// A square piece that shows the whole of image A.
PieceQuad Square(double left, double top) {
  const double corners[4][2] = {{0, 0}, {kSide, 0}, {kSide, kSide}, {0, kSide}};
  PieceQuad piece{};
  for (int corner = 0; corner < 4; ++corner) {
    piece.corners[corner][0] = left + corners[corner][0];
    piece.corners[corner][1] = top + corners[corner][1];
  }
  std::memcpy(piece.texCoords, corners, sizeof corners);
  piece.boneT = 0.5;
  piece.imageSelect = TARVO_IMAGE_A;
  return piece;
}

CompanionSlot RecordOf(const PieceQuad& piece, A_long place) {
  CompanionSlot record{};
  record.quads = {&piece, &piece + 1, &piece + 1, {}};
  record.opacityA = 1.0;
  record.effectIndex = place;
  return record;
}

void Paint(const PF_EffectWorld& world, PF_Pixel colour) {
  auto* row = reinterpret_cast<A_u_char*>(world.data);
  for (A_long y = 0; y < world.height; ++y, row += world.rowbytes) {
    std::fill_n(reinterpret_cast<PF_Pixel*>(row), world.width, colour);
  }
}

/// Puts a new image into the record, in a world of ours.
A_Err AddImage(const Host& host, const PF_InData& in, PF_Pixel colour, CompanionSlot& record) {
  PF_EffectWorld world{};
  const A_Err err =
      host.worlds->new_world(in.effect_ref, kSide, kSide, PF_NewWorldFlag_NONE, &world);
  if (err != A_Err_NONE) {
    return err;
  }
  Paint(world, colour);
  std::memcpy(record.imageA, &world, sizeof world);
  record.newImageA = 1;
  return A_Err_NONE;
}

void DisposeOfImage(const Host& host, const PF_InData& in, const CompanionSlot& record) {
  PF_EffectWorld world{};
  std::memcpy(&world, record.imageA, sizeof world);
  host.worlds->dispose_world(in.effect_ref, &world);
}

}  // namespace

A_Err SampleCompanion::Send(const PF_InData& in, A_long place, double left, double top) {
  const Host host(in);
  if (!host.IsComplete()) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  AEGP_EffectRefH renderer = nullptr;
  A_Err err = FindRenderer(host, in, id_, renderer);
  if (renderer == nullptr) {
    return err;
  }

  const PieceQuad piece = Square(left, top);
  CompanionSlot record = RecordOf(piece, place);
  if (place != place_) {  // images belong to the place, not to the effect
    imageIsNew_ = true;
  }
  place_ = place;
  if (imageIsNew_) {
    err = AddImage(host, in, colour_, record);
  }
  if (err == A_Err_NONE) {
    const A_Time now{in.current_time, in.time_scale};
    err = host.effects->AEGP_EffectCallGeneric(id_, renderer, &now, PF_Cmd_COMPLETELY_GENERAL,
                                               &record);
    // A flag that is still set says that the image was not taken, and that its world is ours. A
    // cleared one says that the world is no longer ours; when the call failed, the image may be
    // lost all the same.
    if (record.newImageA != 0) {
      DisposeOfImage(host, in, record);
    }
    imageIsNew_ = imageIsNew_ && (record.newImageA != 0 || err != A_Err_NONE);
  }
  host.effects->AEGP_DisposeEffect(renderer);
  return err;
}

}  // namespace sample
