#pragma once

#include <vector>

namespace CLI {
class Option;
class Validator;
}  // namespace CLI

namespace tarvo {

/// All validators of an option, in the order in which it keeps them. They belong to the option.
std::vector<const CLI::Validator*> ValidatorsOf(CLI::Option& option);

}  // namespace tarvo
