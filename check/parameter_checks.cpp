// The parameters as the plug-in declares them.

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <tuple>

#include "check/support/host_test.h"
#include "check/support/parameters.h"
#include "check/support/requirement.h"

namespace check::parameters {
namespace {

using standin::Host;

using Parameters = HostTest;

CHECK_F(Parameters, AreDeclaredInOrder,
        "The 54 parameters are declared in their order, with their ranges and defaults.") {
  Host& host = StartHost();
  const auto& parameters = host.DeclaredParameters();
  ASSERT_EQ(parameters.size(), 54U);
  for (int index = 1; index <= 53; ++index) {
    const PF_ParamDef& definition = parameters[static_cast<std::size_t>(index)].definition;
    EXPECT_EQ(definition.uu.id, index);
    EXPECT_EQ(definition.ui_flags, 0) << index;
  }
  for (int index = 1; index <= 50; ++index) {
    SCOPED_TRACE(index);
    const int bone = (index + 1) / 2;
    const auto& parameter = parameters[static_cast<std::size_t>(index)];
    EXPECT_EQ(parameter.Name(),
              "Bone " + std::to_string(bone) + (index == StartZ(bone) ? " start Z" : " end Z"));
    EXPECT_EQ(parameter.definition.param_type, PF_Param_FLOAT_SLIDER);
    EXPECT_EQ(parameter.definition.flags, 64);
    const PF_FloatSliderDef& slider = parameter.definition.u.fs_d;
    EXPECT_EQ(slider.value, 1.0 - bone);
    EXPECT_TRUE(std::signbit(slider.value));  // bone 1's zero, too
    EXPECT_EQ(slider.dephault, slider.value);
    EXPECT_EQ(std::tuple(slider.valid_min, slider.valid_max), std::tuple(-1e9F, 1e9F));
    EXPECT_EQ(std::tuple(slider.slider_min, slider.slider_max), std::tuple(-100.0F, 100.0F));
    EXPECT_EQ(std::tuple(slider.precision, slider.display_flags, slider.fs_flags),
              std::tuple(2, 0, 0));
    EXPECT_EQ(slider.curve_tolerance, 0.05F);
  }
  const struct {
    const char* label;
    PF_ParamType type;
    PF_ParamFlags flags;
    int value;
    int (*initial)(const PF_ParamDefUnion& kind);
  } controls[] = {
      {"Hidden", PF_Param_CHECKBOX, 64, 0,
       [](const auto& kind) -> int { return kind.bd.dephault; }},
      {"Updater:", PF_Param_POPUP, 66, 1, [](const auto& kind) -> int { return kind.pd.dephault; }},
      {"Fast transparency", PF_Param_CHECKBOX, 0, 1,
       [](const auto& kind) -> int { return kind.bd.dephault; }}};
  auto parameter = parameters.begin() + kHidden;
  for (const auto& [label, type, flags, value, initial] : controls) {
    EXPECT_EQ(parameter->Name(), label);
    EXPECT_EQ(parameter->definition.param_type, type) << label;
    EXPECT_EQ(parameter->definition.flags, flags) << label;
    EXPECT_EQ(parameter->Value(), value) << label;
    EXPECT_EQ(initial(parameter->definition.u), value) << label;
    ++parameter;
  }
  EXPECT_STREQ(parameters[kUpdater].definition.u.pd.u.namesptr, "...|Update");
  EXPECT_STREQ(parameters[kHidden].definition.u.bd.u.nameptr, "");
  EXPECT_STREQ(parameters[kFastTransparency].definition.u.bd.u.nameptr, "");
}

CHECK_F(Parameters, EndWithARefusedOne,
        "A parameter that the host refuses ends the declaration, and its code is the result.") {
  for (const std::uint64_t refused : {1U, 2U, 50U, 51U, 52U, 53U}) {
    Host& host = MakeHost();
    ASSERT_TRUE(host.GlobalSetup().Ok());
    host.injector.FailOperation("add_param", refused, {.code = 77});
    EXPECT_EQ(host.ParamsSetup().code, 77) << refused;
    EXPECT_EQ(host.injector.Calls("add_param"), refused);
    EndHost();
  }
}

}  // namespace
}  // namespace check::parameters
