#pragma once

#include <vector>

#include "standin/core/project.h"
#include "tool/rig/scene.h"

namespace tarvo {

/// A parameter and the value it is given.
struct ParameterChange {
  int index = 0;
  double value = 0.0;
};

/// Finds the parameters that a user means by the labels read on the screen. Throws InputError with
/// a line for every setting whose label no visible slider, checkbox or popup has, or several have,
/// or whose value that one does not take. Checkboxes take 0 and 1, popups the number of a choice.
std::vector<ParameterChange> FindParameters(const std::vector<standin::Parameter>& parameters,
                                            const std::vector<Setting>& settings);

}  // namespace tarvo
