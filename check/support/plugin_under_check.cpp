#include "check/support/plugin_under_check.h"

#include <optional>
#include <stdexcept>

#include "standin/loader/plugin_library.h"

namespace check {
namespace {

struct UnderCheck {
  std::optional<standin::PluginLibrary> library;
  PF_EntryPoint entryPoint = nullptr;
};

UnderCheck& ThePlugin() {
  static UnderCheck plugin;
  return plugin;
}

}  // namespace

void UsePlugin(const std::string& file) {
  UnderCheck& plugin = ThePlugin();
  plugin.library.reset();
  plugin.library.emplace(file);
  plugin.entryPoint = plugin.library->EntryPoint();
}

void UseEntryPoint(PF_EntryPoint entryPoint) {
  ThePlugin().library.reset();
  ThePlugin().entryPoint = entryPoint;
}

void ReloadPlugin() { UsePlugin(PluginFile()); }

PF_EntryPoint PluginUnderCheck() {
  const PF_EntryPoint entryPoint = ThePlugin().entryPoint;
  if (entryPoint == nullptr) {
    throw std::logic_error("no plug-in was given to be checked");
  }
  return entryPoint;
}

std::string PluginFile() {
  const UnderCheck& plugin = ThePlugin();
  return plugin.library ? plugin.library->Path() : "";
}

}  // namespace check
