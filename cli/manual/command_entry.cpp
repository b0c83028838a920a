#include "cli/manual/command_entry.h"

#include <algorithm>
#include <iterator>

#include <CLI/CLI.hpp>

#include "cli/options/suggestions.h"
#include "cli/options/validators.h"

namespace tarvo {
namespace {

std::vector<std::string> NamesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) {
    names.push_back("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    names.push_back("--" + name);
  }
  return names;
}

/// What the validators say of the value, less the sets, which are among the suggestions.
std::vector<std::string> LimitsOf(CLI::Option& option) {
  std::vector<std::string> limits;
  for (const CLI::Validator* validator : ValidatorsOf(option)) {
    const std::string limit = validator->get_description();
    if (!limit.empty() && !limit.starts_with('{')) {
      limits.push_back(limit);
    }
  }
  return limits;
}

/// CLI11 returns the placeholder with the descriptions of all validators behind it.
std::string PlaceholderOf(CLI::Option& option) {
  std::string placeholder = option.get_type_name();
  std::string tail;
  for (const CLI::Validator* validator : ValidatorsOf(option)) {
    const std::string limit = validator->get_description();
    tail += limit.empty() ? "" : ":" + limit;
  }
  placeholder.resize(placeholder.size() - tail.size());
  return placeholder;
}

std::vector<std::string> ExcludedBy(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const CLI::Option* other : option.get_excludes()) {
    names.push_back(other->get_name());
  }
  std::ranges::sort(names);  // CLI11 orders them by their addresses
  return names;
}

OptionEntry ReadOption(CLI::Option& option) {
  const bool takesValue = option.get_items_expected_max() > 0;
  return {.names = NamesOf(option),
          .isOperand = option.get_positional(),
          .isRequired = option.get_required(),
          .canRepeat = option.get_expected_max() == CLI::detail::expected_max_vector_size,
          .value = takesValue ? PlaceholderOf(option) : "",
          .suggestions = SuggestionsOf(option),
          .limits = Join(LimitsOf(option), ", "),
          .standardValue = option.get_default_str(),
          .excludes = ExcludedBy(option),
          .description = option.get_description()};
}

template <typename Condition>
std::vector<OptionEntry> OptionsIf(const CommandEntry& command, Condition condition) {
  std::vector<OptionEntry> found;
  std::ranges::copy_if(command.options, std::back_inserter(found), condition);
  return found;
}

}  // namespace

CommandEntry ReadEntry(CLI::App& program) {
  CommandEntry entry{.name = program.get_name(),
                     .description = program.get_description(),
                     .notes = program.get_footer()};
  for (CLI::Option* option : program.get_options()) {
    entry.options.push_back(ReadOption(*option));
  }
  for (CLI::App* command : program.get_subcommands({})) {
    entry.commands.push_back(ReadEntry(*command));
  }
  return entry;
}

std::vector<OptionEntry> NamedOptions(const CommandEntry& command) {
  return OptionsIf(command, [](const OptionEntry& option) { return !option.names.empty(); });
}

std::vector<OptionEntry> Operands(const CommandEntry& command) {
  return OptionsIf(command, [](const OptionEntry& option) { return option.isOperand; });
}

std::string Join(const std::vector<std::string>& texts, const std::string& separator) {
  std::string joined;
  for (const std::string& text : texts) {
    joined += (joined.empty() ? "" : separator) + text;
  }
  return joined;
}

}  // namespace tarvo
