#include "cli/options/validators.h"

#include <CLI/CLI.hpp>

namespace tarvo {

std::vector<const CLI::Validator*> ValidatorsOf(CLI::Option& option) {
  std::vector<const CLI::Validator*> validators;
  try {
    for (int i = 0;; ++i) {
      validators.push_back(option.get_validator(i));
    }
  } catch (const CLI::OptionNotFound&) {  // CLI11 does not tell how many there are
    return validators;
  }
}

}  // namespace tarvo
