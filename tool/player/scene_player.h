#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

#include "base/image/picture.h"
#include "standin/host/host.h"
#include "tool/player/player_settings.h"
#include "tool/rig/animation.h"
#include "tool/rig/scene.h"

namespace tarvo {

/// The host lowers its resolution to at most 1/99.
inline constexpr int kCoarsestDownsample = 99;

/// What is asked for in addition to the scene itself.
struct PlayOptions {
  std::optional<bool> fast;       ///< over the scene's own
  std::vector<Setting> settings;  ///< after the scene's own
  int downsample = 1;             ///< 2 is half resolution, and so on
};

/// Messages from the companions to the plug-in.
struct MessageStatistics {
  std::size_t messages = 0;
  std::size_t images = 0;  ///< taken over by the plug-in
};

/// A frame, and what is worth saying about it.
struct PlayedFrame {
  Picture picture;
  std::size_t pieces = 0;     ///< sent by the active bones
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

/// The bone's pieces as a companion sends them.
std::vector<PieceQuad> Quads(const Bone& bone);

/// Plays a scene on a host as users and companions would: the plug-in starts, every effect of the
/// scene is applied to a layer, sliders change, frames are rendered, and the scene advances.
///
///   Open (Change | Advance | Render)* ; the host's Close ends it
///
/// Every step throws PluginError as soon as a command is answered with an error.
class ScenePlayer {
 public:
  /// REQUIRES: host and scene outlive this object; the host is as it was made.
  ScenePlayer(standin::Host& host, const Scene& scene);

  /// Global set-up, parameters, the effect stack with the renderer's sequence set-up, idle time,
  /// the update of labels, and the first message of every active companion.
  void Open();
  /// Moves the sliders whose value differs from what the scene and the options ask for, as a user
  /// would: the bones' z, fast, then the scene's settings and those given; a slider that nothing
  /// asks for any more is reset to its default. The companions that were nudged send again. Throws
  /// InputError, with nothing moved, when a setting fits no visible slider.
  void Change(const PlayOptions& options);
  /// Follows the scene, which was moved: effects are activated and deactivated, sliders change, and
  /// the companions that changed or were nudged send, each once. An image is included if it or its
  /// opacity changed: the plug-in takes opacities over with images alone. REQUIRES: the scene has
  /// the same bones, images and stack as at the start.
  void Advance(const PlayOptions& options);
  /// Frame set-up and render. `time` is the host's, in frames of 1/25 second.
  PlayedFrame Render(int downsample, int time = 0);

  /// Of all messages so far.
  [[nodiscard]] MessageStatistics Sent() const { return sent_; }

 private:
  /// What a companion shows as one of its images.
  struct Shown {
    std::optional<std::size_t> image;  ///< index into Scene::images
    double opacity = 1.0;

    bool operator==(const Shown&) const = default;
  };

  /// The companion of a bone, and what it last sent.
  struct BoneState {
    std::size_t bone = 0;  ///< index into Scene::bones
    standin::Companion* companion = nullptr;
    double sentCounter = 0.0;  ///< its counter when it last sent
    Shown imageA;
    Shown imageB;
    bool isDirty = false;  ///< it differs from what it last sent
  };

  void BuildStack();
  void AddBone(standin::Layer& layer, std::size_t bone);
  /// Updates the companion from its bone in the scene.
  void Sync(BoneState& state);
  void Show(standin::CompanionImage& image, Shown& shown, const Shown& wanted, BoneState& state);
  void Send(BoneState& state);
  void UpdateLabels();
  void MoveSliders(const PlayOptions& options);
  void ExpectDeclared(int index) const;
  [[nodiscard]] std::vector<ParameterChange> Changes(const PlayOptions& options) const;

  standin::Host& host_;
  const Scene& scene_;
  standin::RendererInstance* renderer_ = nullptr;
  std::vector<BoneState> states_;  ///< from the top
  std::set<int> moved_;            ///< parameters that were ever moved
  MessageStatistics sent_;
};

/// Runs the plug-in from start-up to close for one frame: Open, Change, Render and the host's
/// Close. Throws InputError for a setting that fits no slider, OutOfMemory where the plug-in
/// answered that its memory ran out, and PluginError for any other error answered and for
/// every rule that the host found broken until the end, leaks among them.
PlayedFrame Play(standin::Host& host, const Scene& scene, const PlayOptions& options);

/// Takes a frame that was made; false ends the play after it.
using TakeFrame = std::function<bool(int number, PlayedFrame frame)>;

/// Runs the plug-in from start-up to close for these frames of an animation, in their order; each
/// frame is passed on at once. Throws as Play does, and OutOfMemory also instead of an error that
/// the plug-in answered because this host's memory had run out; a broken rule ends the play
/// before its frame is handed on. REQUIRES: every frame is one of the animation's.
MessageStatistics PlayFrames(standin::Host& host, const Animation& animation,
                             const std::vector<int>& frames, const PlayOptions& options,
                             const TakeFrame& take);

}  // namespace tarvo
