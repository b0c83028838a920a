#pragma once

#include <charconv>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

#include "base/files/whole_file.h"
#include "cli/process/time_limit.h"
#include "tool/player/scene_player.h"

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace tarvo {

/// Adds --time-limit to a command: a number of seconds, which is finite and above 0. REQUIRES:
/// `seconds` outlives the parsing.
void AddTimeLimit(CLI::App& command, double& seconds, const std::string& description);

/// What every command on a scene takes from its command line, as it was typed.
struct SceneOptions {
  std::string scene;
  std::string plugin;  ///< empty: the one beside this program
  bool exact = false;
  bool fast = false;
  std::vector<std::string> settings;
  bool trace = false;
  double timeLimit = kUsualTimeLimit;  ///< seconds, for each command of the plug-in
};

/// Adds them to a command. REQUIRES: `options` outlives the parsing.
void AddSceneOptions(CLI::App& command, SceneOptions& options);

/// Adds --no-sync. REQUIRES: `sync` outlives the parsing.
void AddSyncOption(CLI::App& command, Sync& sync);

/// Options that cannot be used, a line each.
class OptionFaults {
 public:
  void Add(const std::string& line) { lines_.push_back(line); }
  /// "--scale: WHAT expected, "GIVEN" given"
  void Expected(const std::string& option, const std::string& what, const std::string& given);
  using FileExpectation = void (*)(const FilePath& file);
  /// Keeps a line if this function of whole_file.h throws FileError for the file.
  void Expect(FileExpectation expectation, const std::string& file);
  /// Keeps a line if no picture of that name can be made, or if it would not be known for a PNG.
  void ExpectPictureName(const std::string& file);
  /// Throws InputError with all lines, if there are any.
  void ThrowIfAny() const;

 private:
  std::vector<std::string> lines_;
};

/// Keeps an empty text, which a shell makes of an unset variable, from being taken
/// for an option that was not given.
CLI::Option* NotEmpty(CLI::Option* option);

/// The whole text as a number; none when it is something else.
template <typename Number>
std::optional<Number> ReadNumber(std::string_view text) {
  Number number{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size() ? std::optional(number)
                                                                  : std::nullopt;
}

/// The plug-in beside this program, whether it is there or not.
std::string DefaultPlugin();

/// The plug-in that a command asks for.
std::string PluginOf(const SceneOptions& options);

/// --exact, --fast and --set as they are played; those of --set that are no LABEL=NUMBER are kept
/// as faults.
PlayOptions ReadPlayOptions(const SceneOptions& options, OptionFaults& faults);

}  // namespace tarvo
