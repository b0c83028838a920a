#pragma once

#include <array>
#include <cstddef>
#include <map>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "standin/host/host.h"
#include "tool/reference/overlap.h"
#include "tool/rig/animation.h"

/// \file
/// Frames of an animation at which overlapping bones swap their order.
///
/// Each frame is compared with the one before it: of every pair of overlapping pieces of different
/// bones, both places in the depth order are looked up, and a pair whose sign of the difference
/// changed is a flip of its two bones. The cause is then searched among the keyed values that moved
/// the depths of the two bones. The cost of a frame is that of finding its overlapping pairs
/// (OverlapPairs), and of looking at the shared pixels of the pairs that flipped.

namespace tarvo {

/// A keyed value that had a part in a flip, and its keys around the frame.
struct FlipTrack {
  std::string what;        ///< "z of Forearm", "slider Hand end Z", "active of Tail"
  double from = 0.0;       ///< frame of the key at or before
  double to = 0.0;         ///< frame of the next key; the same as `from` from the last one on
  bool keyIsHere = false;  ///< there is a key at this frame, or between it and the frame before
  double change = 0.0;     ///< since the frame before, in Z
};

struct Flip {
  enum class Cause {
    kKey,            ///< there is a key here on what changed most: probably intended
    kInterpolation,  ///< what changed most did so on its way between two keys
    kOther,          ///< no key on a depth: bones changed numbers, for one
  };

  int frame = 0;          ///< the first one with the new order
  std::size_t front = 0;  ///< index into Scene::bones: in front from here on, behind before
  std::size_t behind = 0;
  std::size_t pairs = 0;   ///< of overlapping pieces that changed places
  std::size_t pixels = 0;  ///< layer pixels where both pieces of such a pair have something to show
  Cause cause = Cause::kOther;
  std::vector<FlipTrack> tracks;  ///< those that changed their value here
};

/// Follows an animation from frame to frame.
class FlipFinder {
 public:
  /// REQUIRES: the animation outlives this object.
  explicit FlipFinder(const Animation& animation);

  /// The next frame, which a player has just rendered on this host. Throws InputError when
  /// more pieces lie on one another than can be followed. REQUIRES: frames are followed in their
  /// order, none left out.
  void Follow(int frame, const standin::Host& host);

  [[nodiscard]] const std::vector<Flip>& Flips() const { return flips_; }

 private:
  /// A piece by its bone's index in the scene and its own in the bone.
  using PieceName = std::pair<std::size_t, std::size_t>;
  using PiecePair = std::pair<PieceName, PieceName>;

  struct Slider {
    std::string label;
    double value = 0.0;
  };

  /// What is to be remembered of a frame.
  struct FrameState {
    explicit FrameState(Overlap seen) : overlap(std::move(seen)) {}

    Overlap overlap;                          ///< corners in layer pixels
    std::map<PieceName, std::size_t> places;  ///< in Overlap::Pieces()
    std::vector<PiecePair> touching;          ///< of different bones, in ascending order
    std::map<std::size_t, std::array<Slider, 2>> sliders;  ///< of a bone: start Z, end Z
  };

  static FrameState Capture(const Scene& scene, const standin::Host& host);
  static void FindTouching(const std::vector<std::size_t>& bones, FrameState& state);
  void Compare(const FrameState& before, const FrameState& now, int frame);
  void Explain(Flip& flip, const FrameState& before, const FrameState& now) const;
  /// Adds the track that moves this slider, whose value changed.
  void AddMovingTrack(const std::string& label, std::size_t bone, double ZPair::*end,
                      Flip& flip) const;

  const Animation& animation_;
  Scene scene_;  ///< at the frame followed last, without its pictures
  std::unordered_map<std::string, const SettingKeys*> settings_;  ///< by label
  std::unordered_map<std::size_t, const BoneKeys*> bones_;        ///< by index into Scene::bones
  std::vector<FrameState> last_;                                  ///< at most one
  std::vector<Flip> flips_;
};

/// "37: Forearm in front of Chest …", with the advice for flips that no key asked for.
std::string FlipsText(const Animation& animation, const std::vector<Flip>& flips);
/// As JSON; docs/explain.md describes its form.
std::string FlipsJson(const Animation& animation, const std::vector<Flip>& flips);

}  // namespace tarvo
