#include "cli/options/scene_options.h"

#include <cmath>
#include <cstddef>
#include <utility>

#include <CLI/CLI.hpp>

#include "base/files/input_error.h"
#include "base/files/whole_file.h"
#include "cli/process/system.h"

namespace tarvo {
namespace {

constexpr double kShortestTimeLimit = 0.01;
constexpr double kLongestTimeLimit = 86'400;

std::optional<Setting> ReadSetting(const std::string& text) {
  const std::size_t sign = text.rfind('=');
  const auto value = sign == std::string::npos
                         ? std::nullopt
                         : ReadNumber<double>(std::string_view(text).substr(sign + 1));
  if (!value || !std::isfinite(*value)) {
    return std::nullopt;
  }
  return Setting{text.substr(0, sign), *value, "--set \"" + text + "\""};
}

}  // namespace

std::string DefaultPlugin() { return (ThisProgram().parent_path() / kPluginFile).string(); }

void AddSyncOption(CLI::App& command, Sync& sync) {
  command.add_flag_callback(
      "--no-sync", [&sync] { sync = Sync::kNo; },
      "Do not flush written files to the disk: faster, but a loss of power soon after may lose "
      "them");
}

void AddSceneOptions(CLI::App& command, SceneOptions& options) {
  NotEmpty(command.add_option("scene", options.scene, "The scene, a JSON file"))
      ->required()
      ->type_name("SCENE.json");
  NotEmpty(command.add_option("--plugin", options.plugin,
                              "The plug-in; otherwise the one beside this program"))
      ->type_name("FILE");
  CLI::Option* exact = command.add_flag("--exact", options.exact,
                                        "Turn fast transparency off, overriding the scene");
  command.add_flag("--fast", options.fast, "Turn fast transparency on, overriding the scene")
      ->excludes(exact);
  command
      .add_option("--set", options.settings,
                  "Move the slider of this label; can be given several times")
      ->type_name("LABEL=NUMBER")
      ->allow_extra_args(false);
  command.add_flag("--trace", options.trace,
                   "Write every command and host operation to standard error");
  AddTimeLimit(command, options.timeLimit,
               "Most seconds that one command of the plug-in may take before it is ended as "
               "hanging; 120 otherwise");
}

void AddTimeLimit(CLI::App& command, double& seconds, const std::string& description) {
  const auto check = [](const std::string& text) -> std::string {
    const auto number = ReadNumber<double>(text);
    const bool isLimit = number && *number >= kShortestTimeLimit && *number <= kLongestTimeLimit;
    return isLimit ? "" : "number of seconds from 0.01 to 86400 expected, \"" + text + "\" given";
  };
  command.add_option("--time-limit", seconds, description)->type_name("SECONDS")->check(check);
}

void OptionFaults::Expected(const std::string& option, const std::string& what,
                            const std::string& given) {
  Add(option + ": " + what + " expected, \"" + given + "\" given");
}

void OptionFaults::Expect(FileExpectation expectation, const std::string& file) {
  try {
    expectation(file);
  } catch (const FileError& error) {
    Add(file + ": " + error.what());
  }
}

void OptionFaults::ExpectPictureName(const std::string& file) {
  if (EndingOf(file) != ".png") {
    Expected("--output", "name of a picture that ends in .png", file);
  } else {
    Expect(ExpectWritable, file);
  }
}

void OptionFaults::ThrowIfAny() const {
  if (!lines_.empty()) {
    throw InputError(lines_);
  }
}

CLI::Option* NotEmpty(CLI::Option* option) {
  return option->check(
      [](const std::string& text) { return text.empty() ? "text expected, none given" : ""; });
}

PlayOptions ReadPlayOptions(const SceneOptions& options, OptionFaults& faults) {
  PlayOptions play;
  for (const std::string& text : options.settings) {
    if (const auto setting = ReadSetting(text)) {
      play.settings.push_back(*setting);
    } else {
      faults.Expected("--set", "LABEL=NUMBER", text);
    }
  }
  if (options.exact || options.fast) {
    play.fast = options.fast;
  }
  return play;
}

std::string PluginOf(const SceneOptions& options) {
  return options.plugin.empty() ? DefaultPlugin() : options.plugin;
}

}  // namespace tarvo
