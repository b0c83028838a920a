// Companions are added, removed and send in random order, some with the wrong stack position. After
// each message the picture must show every bone's number.

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <random>
#include <vector>

#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "check/support/settings.h"

namespace check::many_senders {
namespace {

using standin::Companion;
using tarvo::Picture;
using tarvo::Rgba;

constexpr int kMessages = 10'000;
constexpr int kMostSenders = 40;
constexpr int kBonesWithSliders = 25;
/// A sender's piece covers its own cell of the picture and the next one's, where it overlaps that
/// sender's piece: their numbers decide which is in front.
constexpr int kCell = 2;
constexpr int kWidth = (kMostSenders + 1) * kCell;
constexpr int kHeight = 4;
constexpr int kTolerance = 2;

/// Depths in no order, so that being in front is not a matter of being later in the stack.
double Depth(int bone) { return (bone * 7) % kBonesWithSliders; }

Rgba ColourOf(int sender) {
  return {.red = static_cast<std::uint8_t>(10 + 6 * sender),
          .green = static_cast<std::uint8_t>(250 - 6 * sender),
          .blue = static_cast<std::uint8_t>(sender % 2 == 0 ? 40 : 200),
          .alpha = 255};
}

/// The expected state: the last sender and the number of each position.
class Model {
 public:
  void Receive(int sender, int place, const standin::Layer& layer) {
    const auto index = static_cast<std::size_t>(place);
    if (index >= places_.size()) {
      places_.resize(index + 1);
    }
    places_[index].sender = sender;
    int bone = 0;
    for (auto& each : places_) {
      each.bone.reset();
    }
    for (std::size_t at = 0; at < layer.effects.size(); ++at) {
      const auto* companion = dynamic_cast<const Companion*>(layer.effects[at].get());
      if (companion == nullptr || !companion->active) {
        continue;
      }
      if (at < places_.size()) {
        places_[at].bone = bone;
      }
      ++bone;
    }
    for (Place& each : places_) {
      if (!each.bone) {
        each.sender.reset();
      }
    }
  }

  /// The sender that is in front in a cell.
  [[nodiscard]] std::optional<int> InFront(int cell) const {
    const Place* front = nullptr;
    for (const Place& place : places_) {
      const bool covers = place.sender && (*place.sender == cell || *place.sender + 1 == cell);
      if (covers && (front == nullptr || IsNearer(*place.bone, *front->bone))) {
        front = &place;
      }
    }
    return front == nullptr ? std::nullopt : front->sender;
  }

 private:
  struct Place {
    std::optional<int> sender;
    std::optional<int> bone;
  };

  /// Bones without sliders of their own share the last ones, the later in front.
  static bool IsNearer(int bone, int other) {
    const double depth = Depth(std::min(bone, kBonesWithSliders - 1));
    const double others = Depth(std::min(other, kBonesWithSliders - 1));
    return depth < others || (depth == others && bone > other);
  }

  std::vector<Place> places_;
};

class ManySenders : public RigTest {
 protected:
  ManySenders() {
    rig.host.injector.KeepLog(false);
    for (int bone = 0; bone < kBonesWithSliders; ++bone) {
      rig.SetDepth(bone + 1, Depth(bone), Depth(bone));
    }
  }

  std::size_t RandomBelow(std::size_t limit) { return random_() % limit; }

  /// Adds or removes a companion, or changes whether it is active.
  void ChangeStack() {
    const auto sender = RandomBelow(kMostSenders);
    Companion*& companion = companions_[sender];
    if (companion == nullptr) {
      const auto place = static_cast<int>(RandomBelow(rig.layer.effects.size() + 1));
      companion = &rig.host.AddCompanion(rig.layer, std::to_string(sender), place);
    } else if (RandomBelow(2) == 0) {
      companion->active = !companion->active;
    } else {
      rig.host.Remove(*companion);
      companion = nullptr;
    }
  }

  /// Sends one message with an image and a piece, at its sender's stack position or a random one.
  void SendOne() {
    const auto sender = static_cast<int>(RandomBelow(kMostSenders));
    const Companion* const companion = companions_[static_cast<std::size_t>(sender)];
    const bool hasWrongPosition = companion == nullptr || RandomBelow(10) == 0;
    const int place =
        hasWrongPosition ? static_cast<int>(RandomBelow(kMostSenders + 5)) : companion->Position();
    const std::vector<PieceQuad> pieces{
        Piece({static_cast<double>(sender * kCell), 0, 2 * kCell, kHeight}, {1, 1, 2, 2}, 0.5)};
    CompanionSlot record = RecordOf(pieces, place);
    record.opacityA = 1.0;
    record.newImageA = 1;
    const PF_EffectWorld image = rig.host.worlds.From(Picture(4, 4, ColourOf(sender)), "an image");
    std::memcpy(record.imageA, &image, sizeof image);
    ASSERT_EQ(rig.host.SendRecord(rig.renderer, &record).code, 0);
    ASSERT_EQ(record.newImageA, 0);
    model_.Receive(sender, place, rig.layer);
  }

  void ExpectPictureOfModel(int message) {
    const standin::RenderResult frame =
        rig.host.RenderInto(rig.renderer, {.width = kWidth, .height = kHeight});
    ASSERT_TRUE(frame.command.Ok()) << frame.command.code;
    for (int cell = 0; cell <= kMostSenders; ++cell) {
      const std::optional<int> front = model_.InFront(cell);
      const Rgba expected = front ? ColourOf(*front) : Rgba{};
      const Rgba found = frame.picture.At(cell * kCell, 1);
      ASSERT_TRUE(IsNear(found, expected)) << "message " << message << ", cell " << cell
                                           << ": sender " << front.value_or(-1) << " expected";
    }
  }

 private:
  static bool IsNear(Rgba a, Rgba b) {
    return std::abs(a.red - b.red) <= kTolerance && std::abs(a.green - b.green) <= kTolerance &&
           std::abs(a.blue - b.blue) <= kTolerance && std::abs(a.alpha - b.alpha) <= kTolerance;
  }

  std::mt19937 random_{TheSettings().seed};
  std::array<Companion*, kMostSenders> companions_{};
  Model model_;
};

CHECK_F(ManySenders, KeepTheirBoneNumbers,
        "After each of 10,000 messages from 40 companions, which are added, removed and send wrong "
        "positions, every bone has its number.") {
  for (int message = 0; message < kMessages && !HasFatalFailure(); ++message) {
    if (RandomBelow(3) == 0) {
      ChangeStack();
    }
    SendOne();
    ExpectPictureOfModel(message);
  }
}

}  // namespace
}  // namespace check::many_senders
