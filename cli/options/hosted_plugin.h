#pragma once

#include "cli/options/scene_options.h"
#include "cli/process/console.h"
#include "standin/host/host.h"
#include "standin/loader/plugin_library.h"

namespace tarvo {

/// The plug-in that a command asks for, loaded, and a host for it; its trace goes to the console
/// if that was asked for. Throws PluginLoadError, and std::runtime_error where no OpenGL context
/// can be made.
class HostedPlugin {
 public:
  /// REQUIRES: the console's streams outlive this object.
  HostedPlugin(const SceneOptions& options, const Console& console);

  [[nodiscard]] standin::Host& TheHost() { return host_; }

 private:
  standin::PluginLibrary library_;  // outlives the host, whose end calls the plug-in
  standin::Host host_;
};

}  // namespace tarvo
