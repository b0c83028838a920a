#include "standin/core/project.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace standin {
namespace {

/// Truncated; the nearest that a checkbox or popup can hold, 0 for what is no number.
PF_ParamValue WholeValue(double value) {
  using Limits = std::numeric_limits<PF_ParamValue>;
  return std::isnan(value)
             ? 0
             : static_cast<PF_ParamValue>(std::clamp<double>(value, Limits::min(), Limits::max()));
}

}  // namespace

Parameter Parameter::Plain(const std::string& name, double value) {
  Parameter parameter;
  parameter.definition.param_type = PF_Param_FLOAT_SLIDER;
  PF_FloatSliderDef& slider = parameter.definition.u.fs_d;
  slider.valid_min = std::numeric_limits<A_FpShort>::lowest();
  slider.valid_max = std::numeric_limits<A_FpShort>::max();
  slider.value = value;
  parameter.SetName(name);
  return parameter;
}

Parameter Parameter::Declared(const PF_ParamDef& definition) {
  Parameter parameter;
  parameter.definition = definition;
  return parameter;
}

double Parameter::Value() const {
  switch (definition.param_type) {
    case PF_Param_FLOAT_SLIDER:
      return definition.u.fs_d.value;
    case PF_Param_CHECKBOX:
      return definition.u.bd.value;
    case PF_Param_POPUP:
      return definition.u.pd.value;
    default:
      return 0;
  }
}

void Parameter::SetValue(double value) {
  switch (definition.param_type) {
    case PF_Param_FLOAT_SLIDER:
      definition.u.fs_d.value = value;
      break;
    case PF_Param_CHECKBOX:
      definition.u.bd.value = WholeValue(value);
      break;
    case PF_Param_POPUP:
      definition.u.pd.value = WholeValue(value);
      break;
    default:
      break;
  }
}

bool Parameter::Takes(double value) const {
  switch (definition.param_type) {
    case PF_Param_FLOAT_SLIDER:
      return value >= definition.u.fs_d.valid_min && value <= definition.u.fs_d.valid_max;
    case PF_Param_CHECKBOX:
      return value == 0 || value == 1;
    case PF_Param_POPUP:
      return value >= 1 && value <= definition.u.pd.num_choices;
    default:
      return false;
  }
}

std::string Parameter::Name() const {
  const A_char* end = std::find(std::begin(definition.name), std::end(definition.name), '\0');
  return {std::begin(definition.name), end};
}

void Parameter::SetName(const std::string& name) {
  std::memset(definition.name, 0, sizeof definition.name);
  name.copy(definition.name, sizeof definition.name - 1);
}

Effect::Effect(Layer& layer, std::string effectMatchName)
    : matchName(std::move(effectMatchName)), groupName(matchName), layer_(&layer) {}

int Effect::Position() const { return layer_->PositionOf(*this); }

Layer::Layer(std::string layerName, int layerWidth, int layerHeight)
    : name(std::move(layerName)), width(layerWidth), height(layerHeight) {}

int Layer::PositionOf(const Effect& effect) const {
  const auto found =
      std::find_if(effects.begin(), effects.end(),
                   [&](const std::unique_ptr<Effect>& entry) { return entry.get() == &effect; });
  return found == effects.end() ? -1 : static_cast<int>(found - effects.begin());
}

Effect& Layer::Insert(std::unique_ptr<Effect> effect, int position) {
  const int end = static_cast<int>(effects.size());
  const int place = position < 0 || position > end ? end : position;
  return **effects.insert(effects.begin() + place, std::move(effect));
}

std::unique_ptr<Effect> Layer::Take(const Effect& effect) {
  const int position = PositionOf(effect);
  if (position < 0) {
    return nullptr;
  }
  std::unique_ptr<Effect> taken = std::move(effects[static_cast<std::size_t>(position)]);
  effects.erase(effects.begin() + position);
  return taken;
}

Composition::Composition(std::string compositionName) : name(std::move(compositionName)) {}

Layer& Composition::AddLayer(const std::string& layerName, int width, int height) {
  return layers.emplace_back(layerName, width, height);
}

Composition& Project::AddComposition(const std::string& name) {
  Composition& composition = compositions.emplace_back(name);
  Activate(composition);
  return composition;
}

void Project::Activate(Composition& composition) {
  activeComposition_ = &composition;
  footageIsActive_ = false;
}

void Project::ActivateFootage() {
  activeComposition_ = nullptr;
  footageIsActive_ = true;
}

void Project::ActivateNothing() {
  activeComposition_ = nullptr;
  footageIsActive_ = false;
}

}  // namespace standin
