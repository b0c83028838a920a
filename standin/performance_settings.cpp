#include "standin/performance_settings.h"

#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

#include "standin/scene_faults.h"
#include "standin/text_table.h"

namespace standin {
namespace {

/// The values that a parameter takes; none when a user cannot set it.
struct Values {
  double least = 0.0;
  double most = 0.0;
  bool wholeOnly = true;

  [[nodiscard]] bool Contain(double value) const {
    return value >= least && value <= most && (!wholeOnly || value == std::floor(value));
  }
  [[nodiscard]] std::string Words() const {
    return std::string(wholeOnly ? "whole number" : "number") + " from " +
           std::to_string(std::llround(least)) + " to " + std::to_string(std::llround(most));
  }
};

std::optional<Values> ValuesOf(const Parameter& parameter) {
  switch (const auto& definition = parameter.definition; definition.param_type) {
    case PF_Param_FLOAT_SLIDER:
      return Values{definition.u.fs_d.valid_min, definition.u.fs_d.valid_max, false};
    case PF_Param_CHECKBOX:
      return Values{0.0, 1.0};
    case PF_Param_POPUP:
      return Values{1.0, static_cast<double>(definition.u.pd.num_choices)};
    default:
      return std::nullopt;
  }
}

/// What a user sees of an effect's parameters.
class Panel {
 public:
  explicit Panel(const std::vector<Parameter>& parameters) : parameters_(parameters) {}

  /// The change that a setting asks for; what is wrong with the setting goes to `faults`.
  std::optional<ParameterChange> Find(const Setting& setting, SceneFaults& faults) const {
    const std::vector<std::size_t> found = Bearers(setting.label);
    if (found.size() != 1) {
      faults.Add("", found.empty() ? Unknown(setting.label) : Ambiguous(setting.label, found));
      return std::nullopt;
    }
    const auto values = ValuesOf(parameters_[found.front()]);
    if (!values->Contain(setting.value)) {
      faults.Add("", values->Words() + " expected, " + Shortest(setting.value) + " given");
      return std::nullopt;
    }
    return ParameterChange{static_cast<int>(found.front()), setting.value};
  }

 private:
  [[nodiscard]] bool IsSeen(std::size_t index) const {
    return !parameters_[index].Hidden() && ValuesOf(parameters_[index]).has_value();
  }

  [[nodiscard]] std::vector<std::size_t> Bearers(const std::string& label) const {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      if (IsSeen(i) && parameters_[i].Name() == label) {
        found.push_back(i);
      }
    }
    return found;
  }

  [[nodiscard]] std::string Unknown(const std::string& label) const {
    std::vector<std::string> labels;
    bool isHidden = false;
    for (std::size_t i = 0; i < parameters_.size(); ++i) {
      if (IsSeen(i)) {
        labels.push_back(parameters_[i].Name());
      }
      isHidden = isHidden || (parameters_[i].Hidden() && parameters_[i].Name() == label);
    }
    return (isHidden ? "the slider of this label is hidden" : "no slider has this label") +
           NearestHint(label, labels);
  }

  static std::string Ambiguous(const std::string& label, const std::vector<std::size_t>& found) {
    return std::to_string(found.size()) + " sliders are labelled \"" + label +
           "\"; give the bones different names, or set their z";
  }

  const std::vector<Parameter>& parameters_;
};

}  // namespace

std::vector<ParameterChange> FindParameters(const std::vector<Parameter>& parameters,
                                            const std::vector<Setting>& settings) {
  const Panel panel(parameters);
  std::vector<ParameterChange> changes;
  std::vector<std::string> lines;
  for (const Setting& setting : settings) {
    SceneFaults faults(setting.place);
    if (const auto change = panel.Find(setting, faults)) {
      changes.push_back(*change);
    }
    lines.insert(lines.end(), faults.Lines().begin(), faults.Lines().end());
  }
  if (!lines.empty()) {
    throw InputError(lines);
  }
  return changes;
}

}  // namespace standin
