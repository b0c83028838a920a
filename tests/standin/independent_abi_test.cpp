#include <algorithm>
#include <cstdint>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "standin/host/host.h"
#include "tests/standin/independent_abi/plugin.h"
#include "tests/standin/independent_abi/tables.h"

namespace {

using standin::Host;
using standin::Parameter;
using standin::RendererInstance;
using Lines = std::vector<std::string>;

PF_Err Enter(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
             PF_LayerDef* output, void* extra) {
  return independent_abi::EntryPoint(command, in, out, reinterpret_cast<void* const*>(params),
                                     output, extra);
}

/// A host of the plug-in that declares the interface a second time, on a layer of 40 x 20 pixels
/// between a companion and an effect that is not active, both with names beyond the limits.
class IndependentAbi : public ::testing::Test {
 protected:
  IndependentAbi() {
    independent_abi::Begin({.operations = [this] { return TakeOperations(); },
                            .violations = [this] { return TakeViolations(); }});
    EXPECT_TRUE(host.StartUp().Ok());
    standin::Layer& layer = host.project.AddComposition("Comp").AddLayer("Layer", 40, 20);
    host.AddCompanion(layer, std::string(60, 'c'));
    renderer = &host.AddRenderer(layer);
    host.AddEffect(layer, std::string(60, 'm')).active = false;
    EXPECT_TRUE(host.SendRecord(*renderer, nullptr).Ok());
  }
  ~IndependentAbi() override {
    host.Close();
    EXPECT_EQ(independent_abi::Findings(), Lines());
    EXPECT_EQ(host.tracker.Violations(), Lines());
  }

  Host host{Enter, {.pluginPath = "D:\\independent.aex", .preferences = {{{"section", "key"}, 5}}}};
  RendererInstance* renderer = nullptr;

 private:
  Lines TakeOperations() {
    Lines lines;
    for (const standin::CallRecord& call : host.injector.Log()) {
      lines.push_back(call.operation + "(" + call.arguments + ")");
    }
    host.injector.ClearLog();
    return lines;
  }
  Lines TakeViolations() {
    Lines lines = host.tracker.Violations();
    host.tracker.ClearViolations();
    return lines;
  }
};

TEST_F(IndependentAbi, HasTheSameSuitesAndLengths) {
  using Row = std::tuple<std::string, int, std::size_t>;
  std::vector<Row> offered;
  for (const auto& suite : host.Suites()) {
    offered.emplace_back(suite.name, suite.version, suite.slots);
  }
  std::vector<Row> published;
  for (const auto& suite : independent_abi::Suites()) {
    published.emplace_back(suite.name, suite.version, suite.slots.size());
  }
  std::sort(offered.begin(), offered.end());
  std::sort(published.begin(), published.end());
  EXPECT_EQ(offered, published);
}

TEST_F(IndependentAbi, AnswersArriveInTheHost) {
  EXPECT_EQ(host.PluginVersion(), 0x0012'3456U);
  EXPECT_EQ(host.OutFlags(), 1 << 26);
  EXPECT_EQ(host.OutFlags2(), 0x1234);
  EXPECT_EQ(host.Reports(), Lines{"reported"});
  EXPECT_EQ(host.UndoGroups(), Lines{"undone"});
  EXPECT_EQ(host.Preferences().at({"section", "key"}), -7);
  EXPECT_TRUE(renderer->parameters.at(1).Hidden());
  EXPECT_EQ(renderer->parameters.at(1).Name(), "Renamed");
  EXPECT_EQ(renderer->parameters.at(1).sentUiFlags, 0x230);
  EXPECT_EQ(renderer->parameters.at(1).definition.ui_flags, 0x38) << "8 was declared, 0x30 came in";
  EXPECT_EQ(host.Idle(), 77) << "of the hook that was registered";
  const standin::CommandResult about = host.About();
  EXPECT_EQ(about.message, "about");
  EXPECT_TRUE(about.displayMessage);
}

TEST_F(IndependentAbi, ParametersArriveInTheHost) {
  const std::vector<Parameter>& declared = host.DeclaredParameters();
  ASSERT_EQ(declared.size(), 4U);
  const std::pair<PF_ParamType, const char*> kinds[] = {{PF_Param_FLOAT_SLIDER, "Slider"},
                                                        {PF_Param_CHECKBOX, "Checkbox"},
                                                        {PF_Param_POPUP, "Popup"}};
  for (std::size_t i = 1; i < declared.size(); ++i) {
    const PF_ParamDef& common = declared[i].definition;
    EXPECT_EQ(common.param_type, kinds[i - 1].first);
    EXPECT_EQ(declared[i].Name(), kinds[i - 1].second);
    EXPECT_EQ(common.uu.id, 10 + static_cast<A_long>(i));
    EXPECT_EQ(common.ui_flags, 8);
    EXPECT_EQ(common.ui_width, 21);
    EXPECT_EQ(common.ui_height, 22);
    EXPECT_TRUE(declared[i].Supervised());
    EXPECT_EQ(common.unused, 23);
  }
  const PF_FloatSliderDef& slider = declared[1].definition.u.fs_d;
  const std::vector<double> numbers = {slider.value,
                                       slider.phase,
                                       slider.valid_min,
                                       slider.valid_max,
                                       slider.slider_min,
                                       slider.slider_max,
                                       slider.dephault,
                                       double(slider.precision),
                                       double(slider.display_flags),
                                       double(slider.fs_flags),
                                       slider.curve_tolerance,
                                       double(slider.useExponent),
                                       slider.exponent};
  EXPECT_EQ(numbers, (std::vector<double>{1.5, 0.25, -8, 9, -4, 5, 1.25, 2, 3, 4, 0.5, 1, 2}));
  EXPECT_STREQ(slider.value_desc, "described");
  const PF_CheckBoxDef& checkbox = declared[2].definition.u.bd;
  EXPECT_EQ(
      (std::vector<int>{checkbox.value, checkbox.dephault, checkbox.reserved, checkbox.reserved1}),
      (std::vector<int>{1, 1, 2, 3}));
  EXPECT_STREQ(checkbox.u.nameptr, "checked");
  const PF_PopupDef& popup = declared[3].definition.u.pd;
  EXPECT_EQ((std::vector<int>{popup.value, popup.num_choices, popup.dephault}),
            (std::vector<int>{2, 3, 2}));
  EXPECT_STREQ(popup.u.namesptr, "A|B|C");
}

TEST_F(IndependentAbi, CommandsAndFramesAreTheSame) {
  EXPECT_TRUE(host.SetParameter(*renderer, 3, 3).Ok());
  EXPECT_TRUE(host.UpdateParamsUi(*renderer).Ok());
  const tarvo::Picture frame = host.Render(*renderer, {.downsampleX = 2,
                                                       .downsampleY = 4,
                                                       .downsampleNumerator = 3,
                                                       .preEffectOriginX = 6,
                                                       .preEffectOriginY = 7,
                                                       .time = 9})
                                   .picture;
  EXPECT_EQ((std::vector<int>{frame.width, frame.height, frame.originX, frame.originY}),
            (std::vector<int>{4, 3, -2, 5}));
  EXPECT_EQ(frame.At(1, 2), (tarvo::Rgba{2, 3, 4, 255}));
  host.Duplicate(*renderer);
  host.Close();
  EXPECT_EQ(independent_abi::Commands(),
            (std::vector<std::int32_t>{1, 4, 5, 17, 17, 17, 13, 14, 10, 11, 12, 6, 8, 8, 3}));
}

}  // namespace
