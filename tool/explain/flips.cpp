#include "tool/explain/flips.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <set>

#include "base/files/input_error.h"
#include "tarvo/companion.h"
#include "tool/player/overlap_bones.h"
#include "tool/reference/overlap_pairs.h"
#include "tool/rig/active_bones.h"

namespace tarvo {
namespace {

/// Alpha from which a piece counts as having something to show.
constexpr double kSeenAlpha = 0.02;
/// Pairs of pieces of different bones that lie on one another in a frame, at most: 160 MB of them.
constexpr std::size_t kMostTouching = 5'000'000;
/// Pixels of the layer beyond which nothing is looked at: the longest side of a frame.
constexpr double kFarthest = TARVO_LONGEST_SIDE;

std::size_t SharedPixels(const Overlap& overlap, const PlacedPiece& one, const PlacedPiece& other) {
  const auto isSeen = [&](const PlacedPiece& piece, Point at) {
    const auto colour = overlap.ColourAt(piece, at);
    return colour && (*colour)[kAlpha] * overlap.OpacityOf(piece) >= kSeenAlpha;
  };
  const Bounds a = BoundsOf(one.corners);
  const Bounds b = BoundsOf(other.corners);
  const auto first = [](double place) {
    return static_cast<int>(std::floor(std::clamp(place, -kFarthest, kFarthest)));
  };
  const double bottom = std::min({a.bottom, b.bottom, kFarthest});
  const double right = std::min({a.right, b.right, kFarthest});
  std::size_t pixels = 0;
  for (int y = first(std::max(a.top, b.top)); y < bottom; ++y) {
    for (int x = first(std::max(a.left, b.left)); x < right; ++x) {
      const Point centre{x + 0.5, y + 0.5};
      pixels += isSeen(one, centre) && isSeen(other, centre) ? 1U : 0U;
    }
  }
  return pixels;
}

/// A number of a keyed value at a frame.
template <typename Value, typename Number>
double NumberAt(const Segment<Value>& at, Number number) {
  return std::lerp(number(at.from->value), number(at.to->value), at.fraction);
}

/// Adds a track with its keys around a frame, if the number changed since the frame before; one
/// that moves both ends of a bone is listed once, with the greater change.
template <typename Value, typename Number>
void AddTrack(const Track<Value>& track, int frame, const std::string& what, Number number,
              std::vector<FlipTrack>& tracks) {
  const Segment<Value> now = SegmentAt(track, frame);
  const double change =
      std::abs(NumberAt(now, number) - NumberAt(SegmentAt(track, frame - 1), number));
  if (change == 0.0) {
    return;
  }
  const auto known = std::ranges::find(tracks, what, &FlipTrack::what);
  if (known != tracks.end()) {
    known->change = std::max(known->change, change);
    return;
  }
  tracks.push_back({.what = what,
                    .from = now.from->frame,
                    .to = now.to->frame,
                    .keyIsHere = now.from->frame > frame - 1,
                    .change = change});
}

}  // namespace

FlipFinder::FlipFinder(const Animation& animation)
    : animation_(animation), scene_(animation.scene) {
  for (NamedImage& image : scene_.images) {
    image.picture = {};  // the host has them
  }
  for (const SettingKeys& setting : animation.settings) {
    settings_.emplace(setting.label, &setting);
  }
  for (const BoneKeys& bone : animation.bones) {
    bones_.emplace(bone.bone, &bone);
  }
}

void FlipFinder::Follow(int frame, const standin::Host& host) {
  MoveTo(scene_, animation_, frame);
  FrameState now = Capture(scene_, host);
  if (!last_.empty()) {
    Compare(last_.front(), now, frame);
    last_.clear();
  }
  last_.push_back(std::move(now));
}

FlipFinder::FrameState FlipFinder::Capture(const Scene& scene, const standin::Host& host) {
  const standin::RendererInstance& renderer = PlayedRenderer(host);
  const std::vector<std::size_t> bones = ActiveBones(scene);
  FrameState state(Overlap(BonesOn(PlayedLayer(host), renderer), {}));
  const auto& pieces = state.overlap.Pieces();
  for (std::size_t place = 0; place < pieces.size(); ++place) {
    state.places[{bones[pieces[place].bone], pieces[place].index}] = place;
  }
  for (std::size_t number = 0; number < bones.size(); ++number) {
    const auto start = static_cast<std::size_t>(StartSliderOf(number));
    const auto sliderAt = [&](std::size_t parameter) {
      return Slider{renderer.parameters.at(parameter).Name(),
                    renderer.parameters.at(parameter).Value()};
    };
    state.sliders[bones[number]] = {sliderAt(start), sliderAt(start + 1)};
  }
  FindTouching(bones, state);
  return state;
}

void FlipFinder::FindTouching(const std::vector<std::size_t>& bones, FrameState& state) {
  const auto& pieces = state.overlap.Pieces();
  const OverlapPairs pairs(pieces.data(), pieces.data() + pieces.size());
  const bool areAll =
      pairs.ForEach(kMostComparisons, [&](const PlacedPiece& a, const PlacedPiece& b) {
        if (a.bone != b.bone && Overlaps(a.corners, b.corners)) {
          const PieceName one{bones[a.bone], a.index};
          const PieceName other{bones[b.bone], b.index};
          state.touching.emplace_back(std::min(one, other), std::max(one, other));
        }
        return state.touching.size() <= kMostTouching;
      });
  if (!areAll || state.touching.size() > kMostTouching) {
    throw InputError({"flips: too many pieces overlap: at most " + std::to_string(kMostTouching) +
                      " pairs of different bones expected, and " +
                      std::to_string(kMostComparisons) + " pairs in the same columns"});
  }
  std::ranges::sort(state.touching);
}

void FlipFinder::Compare(const FrameState& before, const FrameState& now, int frame) {
  const auto bonesOf = [](const FrameState& state) {
    std::set<std::pair<std::size_t, std::size_t>> bones;
    for (const auto& [one, other] : state.touching) {
      bones.insert({one.first, other.first});
    }
    return bones;
  };
  const auto touchingBefore = bonesOf(before);
  std::map<std::pair<std::size_t, std::size_t>, Flip> found;
  for (const auto& [one, other] : now.touching) {
    if (!touchingBefore.contains({one.first, other.first}) || !before.places.contains(one) ||
        !before.places.contains(other)) {
      continue;
    }
    const bool wasInFront = before.places.at(one) > before.places.at(other);
    const bool isInFront = now.places.at(one) > now.places.at(other);
    const auto& pieces = now.overlap.Pieces();
    const std::size_t pixels =
        wasInFront == isInFront
            ? 0
            : SharedPixels(now.overlap, pieces[now.places.at(one)], pieces[now.places.at(other)]);
    if (pixels == 0) {
      continue;
    }
    const auto front = isInFront ? one.first : other.first;
    const auto behind = isInFront ? other.first : one.first;
    Flip& flip = found[{front, behind}];
    flip.frame = frame;
    flip.front = front;
    flip.behind = behind;
    ++flip.pairs;
    flip.pixels += pixels;
  }
  for (auto& [bones, flip] : found) {
    Explain(flip, before, now);
    flips_.push_back(std::move(flip));
  }
}

void FlipFinder::Explain(Flip& flip, const FrameState& before, const FrameState& now) const {
  for (const std::size_t bone : {flip.front, flip.behind}) {
    const auto& was = before.sliders.at(bone);
    const auto& is = now.sliders.at(bone);
    if (was[0].value != is[0].value) {
      AddMovingTrack(is[0].label, bone, &ZPair::start, flip);
    }
    if (was[1].value != is[1].value) {
      AddMovingTrack(is[1].label, bone, &ZPair::end, flip);
    }
  }
  if (!flip.tracks.empty()) {
    const auto most = std::ranges::max_element(flip.tracks, {}, &FlipTrack::change);
    flip.cause = most->keyIsHere ? Flip::Cause::kKey : Flip::Cause::kInterpolation;
  }
}

void FlipFinder::AddMovingTrack(const std::string& label, std::size_t bone, double ZPair::*end,
                                Flip& flip) const {
  // A slider that is set by its label does not listen to its bone's z.
  const auto setting = settings_.find(label);
  if (setting != settings_.end()) {
    AddTrack(setting->second->value, flip.frame, "slider " + label, std::identity(), flip.tracks);
    return;
  }
  const auto keys = bones_.find(bone);
  if (keys != bones_.end() && !keys->second->z.empty()) {
    AddTrack(
        keys->second->z, flip.frame, "z of " + animation_.scene.bones[bone].name,
        [end](const ZPair& pair) { return pair.*end; }, flip.tracks);
  }
}

}  // namespace tarvo
