#pragma once

#include <cstddef>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "standin/host.h"
#include "standin/performance_settings.h"
#include "standin/picture.h"
#include "standin/scene.h"

namespace standin {

/// What is asked for over and above the scene itself.
struct PlayOptions {
  std::optional<bool> fast;       ///< over the scene's own
  std::vector<Setting> settings;  ///< after the scene's own
  int downsample = 1;             ///< 2 is half resolution, and so on
};

/// A frame, and what is worth saying about it.
struct PlayedFrame {
  Picture picture;
  std::size_t pieces = 0;     ///< sent by the bones that are switched on
  double milliseconds = 0.0;  ///< frame set-up and render
};

/// The plug-in answered a command with an error, or broke a rule: a line for each.
class PluginError : public std::runtime_error {
 public:
  explicit PluginError(std::vector<std::string> faultLines);

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

/// Plays a scene on a host as users and companions would: the plug-in starts, every effect of the
/// scene comes onto a layer, sliders change, frames are asked for.
///
///   Open (Change | Render)* ; the host's Close ends it
///
/// Every step throws PluginError as soon as a command is answered with an error.
class Performance {
 public:
  /// REQUIRES: host and scene outlive this object; the host is as it was made.
  Performance(Host& host, const Scene& scene);

  /// Global set-up, parameters, the effect stack with the renderer's sequence set-up, idle time,
  /// the update of labels, and the first message of every active companion.
  void Open();
  /// Moves sliders as a user would: the bones' z, fast, then the scene's settings and those given.
  /// The companions that were nudged send again. Throws InputError, with nothing moved, when a
  /// setting fits no visible slider.
  void Change(const PlayOptions& options);
  /// Frame set-up and render.
  PlayedFrame Render(int downsample);

 private:
  /// A companion, and its counter when it last sent.
  struct Actor {
    Companion* companion = nullptr;
    double answered = 0.0;
  };

  void BuildStack();
  void AddBone(Layer& layer, const Bone& bone);
  void Send(Actor& actor);
  void ExpectDeclared(int index) const;
  [[nodiscard]] std::vector<ParameterChange> Changes(const PlayOptions& options) const;

  Host& host_;
  const Scene& scene_;
  RendererInstance* renderer_ = nullptr;
  std::vector<Actor> actors_;  ///< those switched on, from the top
};

/// Plays a whole life for one frame: Open, Change, Render and the host's Close. Throws InputError
/// for a setting that fits no slider, and PluginError for an error answered and for every rule that
/// the host found broken until the end, leaks among them.
PlayedFrame Play(Host& host, const Scene& scene, const PlayOptions& options);

}  // namespace standin
