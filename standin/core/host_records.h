#pragma once

#include <cstddef>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>

#include "base/image/picture.h"
#include "sdk/effect.h"
#include "standin/core/project.h"

/// \file
/// Options, requests and results of a host, and the states of the plug-in.

namespace standin {

/// What kind of host this is.
struct HostOptions {
  A_short versionMajor = 13;
  A_short versionMinor = 7;
  /// What get_platform_data says the plug-in's file is.
  std::string pluginPath = "C:\\Plug-ins\\Tarvo_overlaps_manager.aex";
  /// Hosts answer with 16-bit text; false gives 8-bit text, as older ones did.
  bool pathIsWide = true;
  /// Section and key of each preference that exists, with its value.
  std::map<std::pair<std::string, std::string>, A_long> preferences;
  /// False: no OpenGL context is current when the plug-in is called.
  bool ownContext = true;
  /// False skips what touches whole pictures for checking's sake (patterns in new memory and
  /// worlds, the watch on unlocked memory, unwritten pixels, the input layer's pixels), for
  /// timings.
  bool inspectPixels = true;
};

/// State of the plug-in in its lifecycle.
enum class PluginState { kLoaded, kSetUp, kReady, kSetUpFailed, kSetDown };
/// State of an instance of the renderer.
enum class InstanceState { kNew, kSetUp, kSetDown };

/// A command was sent in the wrong state; the text gives the actual and the required state.
class PluginStateError : public std::logic_error {
 public:
  using std::logic_error::logic_error;
};

/// What the plug-in answered to a command.
struct CommandResult {
  PF_Err code = PF_Err_NONE;
  std::string message;          ///< return_msg
  bool displayMessage = false;  ///< the host was asked to show it
  bool escaped = false;         ///< an exception left the entry point; then the code is 512

  [[nodiscard]] bool Ok() const { return code == PF_Err_NONE && !escaped; }
};

/// The conditions under which a frame is asked for.
struct FrameRequest {
  /// Resolution: 1 is full, 2 is half, and so on, in each direction.
  A_u_long downsampleX = 1;
  A_u_long downsampleY = 1;
  A_long downsampleNumerator = 1;  ///< of both; a host's is always 1
  A_long preEffectOriginX = 0;
  A_long preEffectOriginY = 0;
  A_long time = 0;  ///< in frames of 1/25 second
};

/// An output's size and the place of the layer's corner in it, in pixels at the frame's resolution.
struct FrameExtent {
  CommandResult command;
  A_long width = 0;
  A_long height = 0;
  A_long originX = 0;
  A_long originY = 0;
};

struct RenderResult {
  CommandResult command;
  tarvo::Picture picture;
  /// Pixels that the plug-in left as the host made them (0 when pixels are not inspected).
  std::size_t unwritten = 0;
};

struct SendResult {
  CommandResult command;
  bool tookA = false;
  bool tookB = false;
};

/// An instance of the plug-in on a layer.
class RendererInstance : public Effect {
 public:
  explicit RendererInstance(Layer& layer) : Effect(layer, kRendererMatchName) {}

  InstanceState state = InstanceState::kNew;
  PF_Handle sequenceData = nullptr;
  CommandResult setup;  ///< of the last sequence setup or resetup
};

/// A change of the project that the plug-in made through the host.
struct Change {
  std::string what;  ///< "QEZ_Tarvo_renderer parameter 51 = 1", for one
  bool inUndoGroup = false;
  std::string undoGroup;  ///< the name of the outermost group
};

/// "PF_Cmd_RENDER", …: a command by the name that the host's interface gives it.
std::string CommandName(A_long command);

}  // namespace standin
