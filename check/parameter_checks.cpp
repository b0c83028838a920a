// The parameters as the plug-in declares them.

#include <cmath>
#include <cstddef>

#include "check/support/host_test.h"
#include "check/support/promise.h"

namespace check::parameters {
namespace {

using standin::Host;

using Parameters = HostTest;

struct DeclaredCase {
  int index;
  const char* label;
  PF_ParamType type;
  PF_ParamFlags flags;
  double value;
};

CHECK_F(Parameters, AreDeclaredInOrder,
        "The 54 parameters are declared in their order, with their ranges and defaults.") {
  Host& host = StartHost();
  const auto& parameters = host.DeclaredParameters();
  ASSERT_EQ(parameters.size(), 54U);
  const DeclaredCase cases[] = {
      {1, "Bone 1 start Z", PF_Param_FLOAT_SLIDER, 64, 0},
      {2, "Bone 1 end Z", PF_Param_FLOAT_SLIDER, 64, 0},
      {3, "Bone 2 start Z", PF_Param_FLOAT_SLIDER, 64, -1},
      {49, "Bone 25 start Z", PF_Param_FLOAT_SLIDER, 64, -24},
      {50, "Bone 25 end Z", PF_Param_FLOAT_SLIDER, 64, -24},
      {51, "Hidden", PF_Param_CHECKBOX, 64, 0},
      {52, "Updater:", PF_Param_POPUP, 66, 1},
      {53, "Fast transparency", PF_Param_CHECKBOX, 0, 1},
  };
  for (const DeclaredCase& expected : cases) {
    const auto& parameter = parameters[static_cast<std::size_t>(expected.index)];
    EXPECT_EQ(parameter.Name(), expected.label);
    EXPECT_EQ(parameter.definition.uu.id, expected.index);
    EXPECT_EQ(parameter.definition.param_type, expected.type) << expected.label;
    EXPECT_EQ(parameter.definition.flags, expected.flags) << expected.label;
    EXPECT_EQ(parameter.Value(), expected.value) << expected.label;
  }
  EXPECT_TRUE(std::signbit(parameters[1].definition.u.fs_d.value));
  const PF_FloatSliderDef& last = parameters[50].definition.u.fs_d;
  EXPECT_EQ(last.dephault, -24.0F);
  EXPECT_EQ(last.valid_min, -1e9F);
  EXPECT_EQ(last.slider_max, 100.0F);
  EXPECT_EQ(last.curve_tolerance, 0.05F);
  EXPECT_EQ(last.precision, 2);
  EXPECT_STREQ(parameters[52].definition.u.pd.u.namesptr, "...|Update");
  EXPECT_STREQ(parameters[51].definition.u.bd.u.nameptr, "");
}

CHECK_F(Parameters, EndWithARefusedOne,
        "A parameter that the host refuses ends the declaring, and its code is the result.") {
  for (const std::uint64_t refused : {1U, 2U, 50U, 51U, 52U, 53U}) {
    Host& host = MakeHost();
    ASSERT_TRUE(host.GlobalSetup().Ok());
    host.gate.FailOperation("add_param", refused, {.code = 77});
    EXPECT_EQ(host.ParamsSetup().code, 77) << refused;
    EXPECT_EQ(host.gate.Calls("add_param"), refused);
    EndHost();
  }
}

}  // namespace
}  // namespace check::parameters
