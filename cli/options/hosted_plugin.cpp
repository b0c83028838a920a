#include "cli/options/hosted_plugin.h"

#include <ostream>
#include <string_view>

#include "base/files/escaped_text.h"

namespace tarvo {
namespace {

standin::HostOptions OptionsFor(const standin::PluginLibrary& library) {
  standin::HostOptions options;
  options.pluginPath = library.Path();
  return options;
}

}  // namespace

HostedPlugin::HostedPlugin(const SceneOptions& options, const Console& console)
    : library_(PluginOf(options)), host_(library_.EntryPoint(), OptionsFor(library_)) {
  host_.injector.KeepLog(false);
  if (options.trace) {
    host_.injector.TraceTo(
        [&err = console.err](std::string_view line) { err << ForTerminal(line) << '\n'; });
  }
}

}  // namespace tarvo
