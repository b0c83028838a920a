#include "tool/rig/animation.h"

#include <cmath>
#include <numeric>
#include <string>
#include <unordered_map>

namespace tarvo {
namespace {

/// A coordinate of a Bézier curve from 0 over a and b to 1, and its derivative.
struct Unit {
  double a = 0.0;
  double b = 0.0;

  [[nodiscard]] double At(double s) const {
    const double r = 1.0 - s;
    return 3.0 * r * r * s * a + 3.0 * r * s * s * b + s * s * s;
  }
  [[nodiscard]] double SlopeAt(double s) const {
    const double r = 1.0 - s;
    return 3.0 * (r * r * a + 2.0 * r * s * (b - a) + s * s * (1.0 - b));
  }
};

/// The parameter at which a curve that never falls reaches `target`, to the last bits of a double:
/// Newton's steps where they stay inside the bracket, halving where they would leave it.
double Solve(const Unit& curve, double target) {
  constexpr int kMostSteps = 100;
  double low = 0.0;
  double high = 1.0;
  double s = target;
  for (int step = 0; step < kMostSteps; ++step) {
    const double error = curve.At(s) - target;
    if (error == 0.0) {
      return s;
    }
    (error < 0.0 ? low : high) = s;
    const double newton = s - error / curve.SlopeAt(s);  // not finite where the slope is 0
    const double next = newton > low && newton < high ? newton : std::midpoint(low, high);
    if (next == s || next <= low || next >= high) {
      return next;
    }
    s = next;
  }
  return s;
}

double Mix(double from, double to, double fraction) { return std::lerp(from, to, fraction); }

ZPair Mix(ZPair from, ZPair to, double fraction) {
  return {Mix(from.start, to.start, fraction), Mix(from.end, to.end, fraction)};
}

std::array<Point, 4> Mix(const std::array<Point, 4>& from, const std::array<Point, 4>& to,
                         double fraction) {
  std::array<Point, 4> mixed;
  for (std::size_t i = 0; i < mixed.size(); ++i) {
    mixed[i] = Mix(from[i], to[i], fraction);
  }
  return mixed;
}

Corners Mix(const Corners& from, const Corners& to, double fraction) {
  Corners mixed;
  for (std::size_t piece = 0; piece < from.size(); ++piece) {
    mixed.push_back(Mix(from[piece], to[piece], fraction));
  }
  return mixed;
}

template <typename Value>
Value HeldAt(const Track<Value>& track, int frame) {
  return SegmentAt(track, frame).from->value;
}

template <typename Value>
Value MixedAt(const Track<Value>& track, int frame) {
  const Segment<Value> at = SegmentAt(track, frame);
  return at.fraction == 0.0 ? at.from->value : Mix(at.from->value, at.to->value, at.fraction);
}

ZPair Clamped(ZPair pair, double least, double most) {
  return {std::clamp(pair.start, least, most), std::clamp(pair.end, least, most)};
}

void MoveStrip(Bone& bone, const BoneKeys& keys, int frame) {
  if (keys.pose.empty() && keys.poseWidth.empty()) {
    return;
  }
  Strip strip = *keys.strip;
  if (!keys.pose.empty()) {
    strip.pose.middle = MixedAt(keys.pose, frame);
  }
  if (!keys.poseWidth.empty()) {
    const ZPair width = MixedAt(keys.poseWidth, frame);
    strip.pose.startWidth = std::max(width.start, 0.0);
    strip.pose.endWidth = std::max(width.end, 0.0);
  }
  bone.pieces = CutStrip(strip);
}

void MoveCorners(Bone& bone, const Track<Corners>& track, int frame) {
  if (track.empty()) {
    return;
  }
  const Corners corners = MixedAt(track, frame);
  for (std::size_t piece = 0; piece < corners.size(); ++piece) {
    bone.pieces[piece].corners = corners[piece];
  }
}

void MoveBone(Bone& bone, const BoneKeys& keys, int frame) {
  if (!keys.image.empty()) {
    bone.image = HeldAt(keys.image, frame);
  }
  if (!keys.imageB.empty()) {
    bone.imageB = HeldAt(keys.imageB, frame);
  }
  if (!keys.active.empty()) {
    bone.active = HeldAt(keys.active, frame);
  }
  if (!keys.opacity.empty()) {
    bone.opacity = std::clamp(MixedAt(keys.opacity, frame), 0.0, 1.0);
  }
  if (!keys.opacityB.empty()) {
    bone.opacityB = std::clamp(MixedAt(keys.opacityB, frame), 0.0, 1.0);
  }
  if (!keys.z.empty()) {
    bone.z = Clamped(MixedAt(keys.z, frame), -kDeepestZ, kDeepestZ);
  }
  MoveStrip(bone, keys, frame);
  MoveCorners(bone, keys.corners, frame);
}

/// Moves each keyed setting: the scene's own of its label, or a new one after all others.
void MoveSettings(Scene& scene, const std::vector<SettingKeys>& keyed, int frame) {
  std::unordered_map<std::string, std::size_t> places;
  for (std::size_t place = 0; place < scene.settings.size() && !keyed.empty(); ++place) {
    places.emplace(scene.settings[place].label, place);
  }
  for (const SettingKeys& keys : keyed) {
    const auto [found, isNew] = places.try_emplace(keys.label, scene.settings.size());
    if (isNew) {
      scene.settings.push_back({.label = keys.label});
    }
    Setting& setting = scene.settings[found->second];
    setting.value = MixedAt(keys.value, frame);
    setting.place = keys.place + " at frame " + std::to_string(frame);
  }
}

}  // namespace

double EasedFraction(const Ease& ease, double timeFraction) {
  switch (ease.kind) {
    case Ease::Kind::kHeld:
      return 0.0;
    case Ease::Kind::kLinear:
      return timeFraction;
    case Ease::Kind::kCurve:
      return Unit{ease.y1, ease.y2}.At(Solve({ease.x1, ease.x2}, timeFraction));
  }
  return timeFraction;
}

void MoveTo(Scene& scene, const Animation& animation, int frame) {
  for (const BoneKeys& keys : animation.bones) {
    MoveBone(scene.bones[keys.bone], keys, frame);
  }
  MoveSettings(scene, animation.settings, frame);
  if (!animation.fast.empty()) {
    scene.fast = HeldAt(animation.fast, frame);
  }
}

Scene SceneAt(const Animation& animation, int frame) {
  Scene scene = animation.scene;
  MoveTo(scene, animation, frame);
  return scene;
}

}  // namespace tarvo
