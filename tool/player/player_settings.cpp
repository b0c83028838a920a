#include "tool/player/player_settings.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <optional>
#include <string>

#include "base/files/input_error.h"
#include "base/files/name_index.h"
#include "base/files/nearest_word.h"
#include "base/files/text_table.h"

namespace tarvo {
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

std::optional<Values> ValuesOf(const standin::Parameter& parameter) {
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
  explicit Panel(const std::vector<standin::Parameter>& parameters) : parameters_(parameters) {
    for (std::size_t i = 0; i < parameters.size(); ++i) {
      if (IsSeen(i)) {
        labels_.Add(parameters[i].Name());
        seen_.push_back(i);
      }
    }
  }

  /// The change that a setting asks for; what is wrong with the setting goes to `faults`.
  std::optional<ParameterChange> Find(const Setting& setting, FaultLines& faults) const {
    const std::size_t count = labels_.Count(setting.label);
    if (count != 1) {
      faults.Add(
          setting.place + ": " +
          (count == 0 ? Unknown(setting.label, faults.IsFull()) : Ambiguous(setting.label, count)));
      return std::nullopt;
    }
    const std::size_t index = seen_[*labels_.First(setting.label)];
    const auto values = ValuesOf(parameters_[index]);
    if (!values->Contain(setting.value)) {
      faults.Add(setting.place + ": " + values->Words() + " expected, " + Shortest(setting.value) +
                 " given");
      return std::nullopt;
    }
    return ParameterChange{static_cast<int>(index), setting.value};
  }

 private:
  [[nodiscard]] bool IsSeen(std::size_t index) const {
    return !parameters_[index].Hidden() && ValuesOf(parameters_[index]).has_value();
  }

  [[nodiscard]] std::string Unknown(const std::string& label, bool isOnlyCounted) const {
    if (isOnlyCounted) {
      return "";
    }
    const bool isHidden =
        std::ranges::any_of(parameters_, [&](const standin::Parameter& parameter) {
          return parameter.Hidden() && parameter.Name() == label;
        });
    return (isHidden ? "the slider of this label is hidden" : "no slider has this label") +
           NearestHint(label, labels_.Names());
  }

  static std::string Ambiguous(const std::string& label, std::size_t count) {
    return std::to_string(count) + " sliders are labelled \"" + label +
           "\"; give the bones different names, or set their z";
  }

  const std::vector<standin::Parameter>& parameters_;
  NameIndex labels_;               ///< of the parameters that a user sees
  std::vector<std::size_t> seen_;  ///< index of each of them
};

}  // namespace

std::vector<ParameterChange> FindParameters(const std::vector<standin::Parameter>& parameters,
                                            const std::vector<Setting>& settings) {
  const Panel panel(parameters);
  std::vector<ParameterChange> changes;
  FaultLines faults;
  for (const Setting& setting : settings) {
    if (const auto change = panel.Find(setting, faults)) {
      changes.push_back(*change);
    }
  }
  if (faults.Count() > 0) {
    throw InputError(faults.Lines());
  }
  return changes;
}

}  // namespace tarvo
