#include "plugin/entry/parameter_setup.h"

#include <string>

#include "plugin/host/error_chain.h"
#include "plugin/host/parameters.h"

namespace plugin {
namespace {

constexpr A_FpShort kWidestZ = 1'000'000'000.0F;  // what may be typed
constexpr A_FpShort kSliderZ = 100.0F;            // what the slider offers
constexpr A_FpShort kCurveTolerance = 0.05F;
constexpr PF_ParamIndex kAppend = -1;

PF_ParamDef Parameter(const PF_InData& in, PF_ParamIndex index, PF_ParamType type,
                      PF_ParamFlags flags, const std::string& label) {
  PF_ParamDef parameter{};
  parameter.uu.id = index;
  parameter.param_type = type;
  parameter.flags = flags;
  in.utils->ansi.strcpy(parameter.name, label.c_str());
  return parameter;
}

/// A later bone starts one step nearer to the viewer. The first one's zero is a negative zero.
PF_ParamDef DepthSlider(const PF_InData& in, PF_ParamIndex index, A_long ordinal,
                        const char* which) {
  PF_ParamDef parameter = Parameter(in, index, PF_Param_FLOAT_SLIDER, PF_ParamFlag_SUPERVISE,
                                    "Bone " + std::to_string(ordinal + 1) + which);
  PF_FloatSliderDef& slider = parameter.u.fs_d;
  slider.valid_min = -kWidestZ;
  slider.valid_max = kWidestZ;
  slider.slider_min = -kSliderZ;
  slider.slider_max = kSliderZ;
  slider.value = -static_cast<double>(ordinal);
  slider.dephault = static_cast<A_FpShort>(slider.value);
  slider.precision = PF_Precision_HUNDREDTHS;
  slider.curve_tolerance = kCurveTolerance;
  return parameter;
}

PF_ParamDef Checkbox(const PF_InData& in, PF_ParamIndex index, PF_ParamFlags flags,
                     const char* label, bool on) {
  PF_ParamDef parameter = Parameter(in, index, PF_Param_CHECKBOX, flags, label);
  parameter.u.bd.value = on ? 1 : 0;
  parameter.u.bd.dephault = on ? 1 : 0;
  parameter.u.bd.u.nameptr = "";
  return parameter;
}

PF_ParamDef UpdaterPopup(const PF_InData& in) {
  PF_ParamDef parameter =
      Parameter(in, PARAM_UPDATER, PF_Param_POPUP,
                PF_ParamFlag_SUPERVISE | PF_ParamFlag_CANNOT_TIME_VARY, "Updater:");
  parameter.u.pd.num_choices = 2;
  parameter.u.pd.value = 1;
  parameter.u.pd.dephault = 1;
  parameter.u.pd.u.namesptr = "...|Update";
  return parameter;
}

}  // namespace

PF_Err ParamsSetup(PF_InData& in, PF_OutData& out) {
  ErrorChain chain;
  const auto declare = [&](auto make, auto... arguments) {
    chain.Run([&] {
      PF_ParamDef parameter = make(in, arguments...);
      return in.inter.add_param(in.effect_ref, kAppend, &parameter);
    });
  };
  for (A_long ordinal = 0; ordinal < kBoneCount; ++ordinal) {
    declare(DepthSlider, StartZIndex(ordinal), ordinal, " start Z");
    declare(DepthSlider, EndZIndex(ordinal), ordinal, " end Z");
  }
  declare(Checkbox, PARAM_HIDDEN, PF_ParamFlag_SUPERVISE, "Hidden", false);
  declare(UpdaterPopup);
  declare(Checkbox, PARAM_FAST_TRANSPARENCY, PF_ParamFlags{0}, "Fast transparency", true);
  if (chain.Ok()) {
    out.num_params = PARAM_COUNT;
  }
  return chain.Code();
}

}  // namespace plugin
