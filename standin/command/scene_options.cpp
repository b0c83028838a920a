#include "standin/command/scene_options.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <system_error>
#include <utility>

#include <CLI/CLI.hpp>

#include "standin/command/system.h"
#include "standin/scene_faults.h"
#include "standin/whole_file.h"

namespace standin {
namespace {

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

HostOptions OptionsFor(const PluginLibrary& library) {
  HostOptions options;
  options.pluginPath = library.Path();
  return options;
}

}  // namespace

std::string DefaultPlugin() { return (ThisProgram().parent_path() / kPluginFile).string(); }

void AddSceneOptions(CLI::App& command, SceneOptions& options) {
  command.add_option("scene", options.scene, "The scene, a JSON file")
      ->required()
      ->type_name("SCENE.json");
  command
      .add_option("--plugin", options.plugin, "The plug-in; the one beside this program otherwise")
      ->type_name("FILE");
  CLI::Option* exact =
      command.add_flag("--exact", options.exact, "Fast transparency off, whatever the scene says");
  command.add_flag("--fast", options.fast, "Fast transparency on, whatever the scene says")
      ->excludes(exact);
  command
      .add_option("--set", options.settings,
                  "Move the slider of this label; can be given several times")
      ->type_name("LABEL=NUMBER")
      ->allow_extra_args(false);
  command.add_flag("--trace", options.trace,
                   "Write every command and host operation to standard error");
}

void OptionFaults::Expected(const std::string& option, const std::string& what,
                            const std::string& given) {
  Add(option + ": " + what + " expected, \"" + given + "\" given");
}

void OptionFaults::ExpectWritable(const std::string& file) {
  try {
    standin::ExpectWritable(file);
  } catch (const FileError& error) {
    Add(file + ": " + error.what());
  }
}

void OptionFaults::ExpectPictureName(const std::string& file) {
  if (EndingOf(file) != ".png") {
    Expected("--output", "name of a picture that ends in .png", file);
  } else {
    ExpectWritable(file);
  }
}

void OptionFaults::ThrowIfAny() const {
  if (!lines_.empty()) {
    throw InputError(lines_);
  }
}

void ExpectApart(const std::vector<std::string>& made,
                 const std::vector<std::filesystem::path>& read) {
  // Folders are few and files many: only those are asked of the disk.
  std::map<std::filesystem::path, std::filesystem::path> folders;
  const auto placeOf = [&](const std::filesystem::path& file) {
    const auto [found, isNew] = folders.try_emplace(file.parent_path());
    if (isNew) {
      std::error_code ignored;
      found->second = std::filesystem::weakly_canonical(
          file.has_parent_path() ? file.parent_path() : ".", ignored);
    }
    return found->second / file.filename();
  };
  std::set<std::filesystem::path> places;
  std::ranges::transform(read, std::inserter(places, places.end()), placeOf);
  for (const std::string& file : made) {
    if (places.contains(placeOf(FilePath(file).Get()))) {
      throw InputError({"--output: " + file + " would take the place of a file that was read"});
    }
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

std::vector<std::string> CommandLine(const SceneOptions& options) {
  std::vector<std::string> words = {options.scene};
  if (!options.plugin.empty()) {
    words.insert(words.end(), {"--plugin", options.plugin});
  }
  for (const auto& [isSet, flag] :
       {std::pair(options.exact, "--exact"), std::pair(options.fast, "--fast"),
        std::pair(options.trace, "--trace")}) {
    if (isSet) {
      words.emplace_back(flag);
    }
  }
  for (const std::string& setting : options.settings) {
    words.insert(words.end(), {"--set", setting});
  }
  return words;
}

HostedPlugin::HostedPlugin(const SceneOptions& options, const Console& console)
    : library_(options.plugin.empty() ? DefaultPlugin() : options.plugin),
      host_(library_.EntryPoint(), OptionsFor(library_)) {
  host_.gate.KeepLog(false);
  if (options.trace) {
    host_.gate.TraceTo([&err = console.err](std::string_view line) { err << line << '\n'; });
  }
}

}  // namespace standin
