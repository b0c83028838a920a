#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "tool/rig/scene.h"
#include "tool/rig/strip.h"

namespace tarvo {

/// How a value changes from a key to the next.
struct Ease {
  enum class Kind { kHeld, kLinear, kCurve };

  Kind kind = Kind::kLinear;
  /// The handles of kCurve: a cubic Bézier curve from (0, 0) over (x1, y1) and (x2, y2) to (1, 1),
  /// x being the fraction of the time and y the fraction of the change in value. x1 and x2 lie
  /// within 0 to 1.
  double x1 = 0.0;
  double y1 = 0.0;
  double x2 = 1.0;
  double y2 = 1.0;
};

/// The fraction of the change at a fraction of the time (0 to 1); beyond 0 to 1 where handles
/// overshoot.
double EasedFraction(const Ease& ease, double timeFraction);

template <typename Value>
struct Key {
  double frame = 0.0;
  Value value{};
  Ease ease;  ///< from here to the next key; ignored for values that are always held
};

/// Keys on one value, by ascending frame; none: the value is not animated.
template <typename Value>
using Track = std::vector<Key<Value>>;

/// The keys around a frame. Before the first key and from the last one on it is that key alone.
template <typename Value>
struct Segment {
  const Key<Value>* from = nullptr;
  const Key<Value>* to = nullptr;
  double fraction = 0.0;  ///< of the way from one to the other
};

/// Where a frame lies in a track. REQUIRES: the track has a key.
template <typename Value>
Segment<Value> SegmentAt(const Track<Value>& track, double frame) {
  const auto next = std::ranges::upper_bound(track, frame, {}, &Key<Value>::frame);
  if (next == track.begin() || next == track.end()) {
    const Key<Value>* only = next == track.begin() ? &track.front() : &track.back();
    return {only, only, 0.0};
  }
  const Key<Value>& from = *(next - 1);
  const double time = (frame - from.frame) / (next->frame - from.frame);
  return {&from, &*next, time == 0.0 ? 0.0 : EasedFraction(from.ease, time)};
}

/// The corners of a bone's pieces, one after the other.
using Corners = std::vector<std::array<Point, 4>>;

/// The keyed values of one bone.
struct BoneKeys {
  std::size_t bone = 0;  ///< index into Scene::bones
  Track<std::size_t> image;
  Track<std::size_t> imageB;
  Track<bool> active;
  Track<double> opacity;
  Track<double> opacityB;
  Track<ZPair> z;
  std::optional<Strip> strip;  ///< what is cut again at each frame, if pose or width move
  Track<Curve> pose;
  Track<ZPair> poseWidth;  ///< at the strip's start and end
  Track<Corners> corners;  ///< of a bone without a strip
};

/// The keyed value of one slider.
struct SettingKeys {
  std::string label;
  Track<double> value;
  std::string place;  ///< where it is defined, for messages: "wave.json: frames.set["Hand end Z"]"
};

/// A scene that moves. A still one has a single frame and no keys.
struct Animation {
  Scene scene;                               ///< what is not keyed is as it is here
  std::vector<std::filesystem::path> files;  ///< that it was read from: the scene's, its images'
  std::uint64_t fingerprint = 0;             ///< of the bytes of these files; equal for equal bytes
  int count = 1;
  double rate = 25.0;  ///< frames a second
  std::vector<BoneKeys> bones;
  std::vector<SettingKeys> settings;
  Track<bool> fast;
};

/// Moves a scene to a frame: every keyed value becomes what it is there, the strips that move are
/// cut again, and the rest stays. The same frame gives the same scene, whatever frame it was at.
/// REQUIRES: `scene` is a copy of `animation.scene`, moved by this function alone.
void MoveTo(Scene& scene, const Animation& animation, int frame);

/// The scene at a frame, with a copy of every image.
Scene SceneAt(const Animation& animation, int frame);

}  // namespace tarvo
