#include "sdk/effect_suites.h"
#include "standin/core/operation.h"
#include "standin/core/pixels.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

bool SameSize(const PF_EffectWorld& source, const PF_Rect* from, const PF_EffectWorld& destination,
              const PF_Rect* to) {
  const auto width = [](const PF_EffectWorld& world, const PF_Rect* area) {
    return area == nullptr ? world.width : area->right - area->left;
  };
  const auto height = [](const PF_EffectWorld& world, const PF_Rect* area) {
    return area == nullptr ? world.height : area->bottom - area->top;
  };
  return width(source, from) == width(destination, to) &&
         height(source, from) == height(destination, to);
}

PF_Err NewWorld(Core& core, PF_ProgPtr effect, A_long width, A_long height, PF_NewWorldFlags flags,
                PF_EffectWorld* world) {
  if (core.Instance(effect, "new_world") == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  return core.worlds.New(width, height, flags, "made by new_world", world);
}

PF_Err DisposeWorld(Core& core, PF_ProgPtr effect, PF_EffectWorld* world) {
  // A world may outlive its instance: at its end the plug-in gives it back in its own name.
  if (effect != core.pluginRef) {
    core.Instance(effect, "dispose_world");
  }
  return core.worlds.Dispose(world, "dispose_world");
}

PF_Err Premultiply(Core& core, PF_ProgPtr effect, A_long forward, PF_EffectWorld* world) {
  if (core.Instance(effect, "premultiply") == nullptr || !core.worlds.Check(world, "premultiply")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (forward != 0) {
    PremultiplyPixels(*world);
  } else {
    StraightenPixels(*world);
  }
  return PF_Err_NONE;
}

PF_Err Copy(Core& core, PF_ProgPtr effect, PF_EffectWorld* source, PF_EffectWorld* destination,
            PF_Rect* from, PF_Rect* to) {
  if (core.Instance(effect, "copy") == nullptr || !core.worlds.Check(source, "copy") ||
      !core.worlds.Check(destination, "copy")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (!SameSize(*source, from, *destination, to)) {
    core.tracker.ReportViolation(
        "copy was given areas of different sizes; this host does not scale");
  }
  CopyPixels(*source, from, *destination, to);
  return PF_Err_NONE;
}

PF_Err Fill(Core& core, PF_ProgPtr effect, const PF_Pixel* colour, const PF_Rect* area,
            PF_EffectWorld* world) {
  if (core.Instance(effect, "fill") == nullptr || !core.worlds.Check(world, "fill")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  FillPixels(*world, area, colour == nullptr ? PF_Pixel{} : *colour);
  return PF_Err_NONE;
}

PF_Err GetPixelData8(Core& core, PF_EffectWorld* world, PF_Pixel* pixels, PF_Pixel** first) {
  if (first == nullptr || !core.worlds.Check(world, "get_pixel_data8")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *first = pixels != nullptr ? pixels : world->data;
  return PF_Err_NONE;
}

}  // namespace

void AddWorldSuites(Core& core) {
  auto& world = core.suites.Add<PF_WorldSuite1>("PF World Suite", 1);
  world.new_world = Operation<"new_world", NewWorld>::Call;
  world.dispose_world = Operation<"dispose_world", DisposeWorld, FailurePoint::kAfterEffect>::Call;

  auto& matte = core.suites.Add<PF_FillMatteSuite2>("PF Fill Matte Suite", 2);
  matte.premultiply = Operation<"premultiply", Premultiply>::Call;

  core.suites.FillUnused(core.utilities, DescribeUtilitySlots());
  core.utilities.copy = Operation<"copy", Copy>::Call;
  core.utilities.fill = Operation<"fill", Fill>::Call;
  core.utilities.get_pixel_data8 = Operation<"get_pixel_data8", GetPixelData8>::Call;
}

}  // namespace standin
