// Records that no companion should send, and companions that come and go: what is sent is refused
// or tolerated, nothing leaks, and the other bones' pieces are drawn as before.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "check/support/settings.h"

namespace check::bad_records {
namespace {

using standin::Companion;
using standin::Kind;
using tarvo::Picture;
using tarvo::Rgba;

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr double kEndless = std::numeric_limits<double>::infinity();
constexpr A_long kLeast = std::numeric_limits<A_long>::min();
constexpr A_long kMost = std::numeric_limits<A_long>::max();
constexpr PF_Err kRefused = 516;

/// A good bone in front, and one behind it whose records are corrupt.
class BadRecords : public RigTest {
 protected:
  BadRecords() {
    rig.SetDepth(1, -5, -5);
    rig.SetDepth(2, 3, 3);
    rig.Send();
    for (const Mode mode : {kExact, kFast}) {
      good_[mode] = Frame(mode);
    }
  }

  enum Mode : std::size_t { kExact, kFast };

  Picture Frame(Mode mode) {
    rig.SetFast(mode == kFast);
    const standin::RenderResult frame =
        rig.host.RenderInto(rig.renderer, {.width = 200, .height = 160});
    EXPECT_TRUE(frame.command.Ok()) << frame.command.code << " " << frame.command.message;
    EXPECT_EQ(frame.unwritten, 0U);
    return frame.picture;
  }

  /// In both modes a frame comes, and in it the good bone's piece.
  void ExpectGoodBoneDrawn(const std::string& after) {
    for (const Mode mode : {kFast, kExact}) {
      const Picture frame = Frame(mode);
      std::size_t different = 0;
      for (int y = 30; y < 80; ++y) {
        for (int x = 20; x < 90; ++x) {
          different += frame.At(x, y) == good_[mode].At(x, y) ? 0U : 1U;
        }
      }
      EXPECT_EQ(different, 0U) << after << (mode == kFast ? ", fast" : ", exact");
    }
  }

  void ExpectPictureAsBefore(const std::string& after) {
    for (const Mode mode : {kFast, kExact}) {
      EXPECT_EQ(Frame(mode), good_[mode]) << after << (mode == kFast ? ", fast" : ", exact");
    }
  }

  PF_Err SendRecord(CompanionSlot& record) {
    return rig.host.SendRecord(rig.renderer, &record).code;
  }

  /// The bad bone behaves again.
  void SendProperly() {
    bad.SendImagesAgain();
    rig.Send();
  }

  const std::vector<PieceQuad> pieces{Piece({90, 60, 60, 40}, {2, 2, 28, 20}, 0.25),
                                      Piece({120, 90, 60, 40}, {2, 2, 28, 20}, 0.75),
                                      Piece({30, 40, 50, 30}, {2, 2, 28, 20}, 0.5)};
  Companion& front = rig.AddBone(Pattern(64, 48, 1), {Piece({20, 30, 70, 50}, {2, 2, 60, 44}, 0)});
  Companion& bad = rig.AddBone(Pattern(32, 24, 2), pieces);
  std::mt19937 random{TheSettings().seed};

 private:
  std::array<Picture, 2> good_;  ///< by mode
};

struct Field {
  const char* name;
  std::size_t offset;
  std::size_t bytes;
};

/// The bytes of each value that is worth a try in a field of this size: edges, then noise.
std::vector<std::vector<std::uint8_t>> CorruptValues(std::size_t bytes, std::mt19937& random) {
  std::vector<std::vector<std::uint8_t>> values;
  const auto add = [&](const auto& value) {
    if (sizeof value != bytes) {
      return;
    }
    const auto* first = reinterpret_cast<const std::uint8_t*>(&value);
    values.emplace_back(first, first + sizeof value);
  };
  for (const double value :
       {-0.0, 1.0, -1.0, 1e-310, 1e12, 3.5e38, 1e300, -1e300, kNone, kEndless, -kEndless}) {
    add(value);
  }
  for (const A_long value : {0, 1, -1, 2, 65'534, 65'535, 65'536, kLeast, kMost}) {
    add(value);
  }
  for (const std::uint8_t byte : std::initializer_list<std::uint8_t>{0, 1, 127, 128, 255}) {
    values.emplace_back(bytes, byte);
  }
  for (int i = 0; i < 8; ++i) {
    for (std::uint8_t& byte : values.emplace_back(bytes)) {
      byte = static_cast<std::uint8_t>(random());
    }
  }
  return values;
}

CHECK_F(BadRecords, ToleratesEveryFieldAtItsLimits,
        "Any bytes in any field of a record but its images and pieces are refused or tolerated, "
        "and the picture stays the same.") {
  constexpr std::array<Field, 8> kFields{{
      {"quads.reservedEnd", offsetof(CompanionSlot, quads) + 16, 8},
      {"quads.unused", offsetof(CompanionSlot, quads) + 24, 8},
      {"newImageA, without an image", offsetof(CompanionSlot, newImageA), 1},
      {"newImageB, without an image", offsetof(CompanionSlot, newImageB), 1},
      {"padding", offsetof(CompanionSlot, padding), 2},
      {"opacityA", offsetof(CompanionSlot, opacityA), 8},
      {"opacityB", offsetof(CompanionSlot, opacityB), 8},
      {"effectIndex", offsetof(CompanionSlot, effectIndex), 4},
  }};
  const int ownPlace = bad.Position();
  for (const Field& field : kFields) {
    for (const auto& value : CorruptValues(field.bytes, random)) {
      CompanionSlot record = RecordOf(pieces, ownPlace);
      std::memcpy(reinterpret_cast<std::uint8_t*>(&record) + field.offset, value.data(),
                  value.size());
      const A_long place = record.effectIndex;
      if (place == front.Position()) {  // it would be believed
        continue;
      }
      const CompanionSlot before = record;
      EXPECT_EQ(SendRecord(record), place < 0 || place > 65'535 ? kRefused : 0)
          << field.name << " " << ::testing::PrintToString(value);
      EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0) << field.name;
    }
    ExpectPictureAsBefore(field.name);
  }
}

CHECK_F(BadRecords, ToleratesEveryNumberInAPiece,
        "Any number in a piece is tolerated: a frame is rendered, and the other bones are drawn in "
        "it as before.") {
  for (std::size_t number = 0; number < 18; ++number) {
    std::vector<PieceQuad> corrupt;
    for (const auto& value : CorruptValues(8, random)) {
      PieceQuad piece = pieces[0];
      std::memcpy(reinterpret_cast<std::uint8_t*>(&piece) + number * 8, value.data(), 8);
      corrupt.push_back(piece);
    }
    CompanionSlot record = RecordOf(corrupt, bad.Position());
    EXPECT_EQ(SendRecord(record), 0) << "number " << number;
    ExpectGoodBoneDrawn("number " + std::to_string(number));
  }
  std::vector<PieceQuad> ofNoImage = pieces;
  for (const std::uint32_t select : {1U, 2U, 0x7FFF'FFFFU, 0x8000'0000U, 0xFFFF'FFFEU}) {
    for (PieceQuad& piece : ofNoImage) {
      piece.imageSelect = select;
    }
    CompanionSlot record = RecordOf(ofNoImage, bad.Position());
    EXPECT_EQ(SendRecord(record), 0);
    ExpectGoodBoneDrawn("imageSelect " + std::to_string(select));
  }
  SendProperly();
  ExpectPictureAsBefore("proper records");
}

CHECK_F(BadRecords, ToleratesDegenerateShapes,
        "Pieces that are empty, inverted, infinite or not a number are tolerated, and the output "
        "stays within the host's limits.") {
  using Points = std::array<double, 8>;
  struct Shape {
    const char* name;
    Points points;
  };
  const Shape shapes[] = {
      {"a point", {50, 50, 50, 50, 50, 50, 50, 50}},
      {"a line", {30, 40, 80, 40, 80, 40, 30, 40}},
      {"inside out", {30, 40, 30, 70, 80, 70, 80, 40}},
      {"a bow tie", {30, 40, 80, 40, 30, 70, 80, 70}},
      {"a dart", {30, 40, 80, 40, 40, 45, 30, 70}},
      {"all of the plane", {-1e300, -1e300, 1e300, -1e300, 1e300, 1e300, -1e300, 1e300}},
      {"single precision's end", {-3e38, -3e38, 3e38, -3e38, 3e38, 3e38, -3e38, 3e38}},
      {"one corner at infinity", {30, 40, kEndless, 40, 80, 70, 30, 70}},
      {"no numbers", {kNone, kNone, kNone, kNone, kNone, kNone, kNone, kNone}},
      {"far away", {1e9, 1e9, 1e9 + 9, 1e9, 1e9 + 9, 1e9 + 9, 1e9, 1e9 + 9}},
  };
  for (const std::size_t offset : {offsetof(PieceQuad, corners), offsetof(PieceQuad, texCoords)}) {
    for (const Shape& shape : shapes) {
      std::vector<PieceQuad> corrupt = pieces;
      for (PieceQuad& piece : corrupt) {
        std::memcpy(reinterpret_cast<std::uint8_t*>(&piece) + offset, shape.points.data(), 64);
      }
      CompanionSlot record = RecordOf(corrupt, bad.Position());
      EXPECT_EQ(SendRecord(record), 0) << shape.name;
      ExpectGoodBoneDrawn(shape.name);
      const standin::FrameExtent extent = rig.host.FrameSetup(rig.renderer);
      EXPECT_TRUE(extent.width >= 70 && extent.width <= 30'000) << shape.name;
      EXPECT_TRUE(extent.height >= 50 && extent.height <= 30'000) << shape.name;
    }
  }
}

/// Whole pieces are taken, whatever was there before; the output is as wide as they need.
CHECK_F(BadRecords, RefusesListsCutWithinAPiece,
        "A list of pieces that ends within one is refused, and what the bone sent before stays.") {
  const int widths[] = {78, 144, 176, 176};  // of the good bone and 0 to 3 others, and the margin
  const auto* const first = reinterpret_cast<const std::uint8_t*>(pieces.data());
  for (std::size_t bytes = 0; bytes <= pieces.size() * sizeof(PieceQuad); ++bytes) {
    CompanionSlot record = RecordOf(pieces, bad.Position());
    record.quads.last = reinterpret_cast<const PieceQuad*>(first + bytes);
    const bool isWhole = bytes % sizeof(PieceQuad) == 0;
    EXPECT_EQ(SendRecord(record), isWhole ? 0 : kRefused) << bytes << " bytes";
    EXPECT_EQ(rig.host.FrameSetup(rig.renderer).width, widths[bytes / sizeof(PieceQuad)]) << bytes;
  }
}

/// Records that claim a position without a companion: nothing of them is ever drawn.
CHECK_F(BadRecords, IgnoresPositionsWithoutACompanion,
        "A record that claims the position of another effect, of an inactive companion, or past "
        "the end of the stack is not drawn.") {
  rig.host.AddEffect(rig.layer, "X Glow");
  bad.active = false;
  const int places[] = {rig.renderer.Position(), bad.Position(), 3, 4, 300, 65'535};
  for (const int place : places) {
    CompanionSlot record = RecordOf(pieces, place);
    EXPECT_EQ(SendRecord(record), 0) << place;
    EXPECT_EQ(rig.host.FrameSetup(rig.renderer).width, 78) << place;
    ExpectGoodBoneDrawn("place " + std::to_string(place));
  }
  bad.active = true;
  SendProperly();
  ExpectPictureAsBefore("all of it");
}

// ---- Images

struct ImageCase {
  const char* name;
  std::function<void(PF_EffectWorld&)> corrupt;
  bool isTaken;    ///< the flag is cleared
  bool isRefused;  ///< the host refuses it, and the sender's world is left alone
};

CHECK_F(BadRecords, PassesCorruptImagesToTheHost,
        "An image without a size stays with its sender; one that the host refuses affects no other "
        "bone.") {
  const auto size = [](A_long width, A_long height) {
    return [=](PF_EffectWorld& world) {
      world.width = width;
      world.height = height;
    };
  };
  const ImageCase cases[] = {
      {"as made", [](PF_EffectWorld&) {}, true, false},
      {"no width", size(0, 24), false, false},
      {"no height", size(32, 0), false, false},
      {"nothing", size(0, 0), false, false},
      {"another size", size(1, 1), true, true},
      {"a negative width", size(-32, 24), true, true},
      {"a negative height", size(32, kLeast), true, true},
      {"a huge width", size(kMost, 24), true, true},
      {"both huge", size(kMost, kMost), true, true},
      {"rows shorter than their pixels", [](PF_EffectWorld& world) { world.rowbytes = 4; }, true,
       true},
      {"rows that run upwards", [](PF_EffectWorld& world) { world.rowbytes = -world.rowbytes; },
       true, true},
      {"other pixels", [](PF_EffectWorld& world) { world.data += 1; }, true, true},
      {"no pixels", [](PF_EffectWorld& world) { world.data = nullptr; }, true, true},
      {"none of the host's", [](PF_EffectWorld& world) { world.reserved0 = &world; }, true, true},
  };
  for (const ImageCase& image : cases) {
    for (const bool isB : {false, true}) {
      CompanionSlot record = RecordOf(pieces, bad.Position());
      const PF_EffectWorld made = rig.host.worlds.From(Pattern(32, 24, 2), "an image");
      PF_EffectWorld sent = made;
      image.corrupt(sent);
      std::memcpy(isB ? record.imageB : record.imageA, &sent, sizeof sent);
      std::uint8_t& flag = isB ? record.newImageB : record.newImageA;
      flag = 1;
      record.opacityA = record.opacityB = 1.0;
      EXPECT_EQ(SendRecord(record) != 0, image.isRefused) << image.name;
      EXPECT_EQ(flag == 0, image.isTaken) << image.name;
      EXPECT_EQ(rig.host.worlds.IsLive(made), !image.isTaken || image.isRefused) << image.name;
      if (rig.host.worlds.IsLive(made)) {
        rig.host.worlds.Dispose(&made, "the companion");
      }
      for (const std::string& violation : rig.host.tracker.Violations()) {
        EXPECT_TRUE(image.isRefused && violation.starts_with("copy was given")) << violation;
      }
      rig.host.tracker.ClearViolations();
      ExpectGoodBoneDrawn(image.name);
      EXPECT_EQ(rig.host.tracker.Count(Kind::kWorld), 1U) << image.name;  // the input layer
    }
  }
  SendProperly();
  ExpectPictureAsBefore("proper images");
}

CHECK_F(BadRecords, AcceptsImagesOfAnySize,
        "Images of one pixel and of 20,000 in a row are accepted.") {
  for (const auto& [width, height] :
       {std::pair{1, 1}, {1, 700}, {700, 1}, {20'000, 2}, {2, 20'000}}) {
    bad.imageA.Set(Picture(width, height, {10, 20, 30, 255}));
    EXPECT_TRUE(rig.host.Send(bad, rig.renderer).tookA);
    ExpectGoodBoneDrawn(std::to_string(width) + " x " + std::to_string(height));
  }
}

// ---- Faults that bad input has brought to light

/// The host has taken the world back and says so by throwing: the sender must not do it again.
CHECK_F(BadRecords, AcceptsAnImageWhoseDisposalThrows,
        "When the host throws as it disposes of the sender's image, the flag still says that the "
        "image is gone.") {
  bad.SendImagesAgain();
  rig.host.injector.FailOperation("dispose_world", 1, {.code = 55, .throws = true});
  EXPECT_EQ(rig.host.Send(bad, rig.renderer).command.code, kRefused);
  rig.Send();
  ExpectPictureAsBefore("a message that went well");
}

}  // namespace
}  // namespace check::bad_records
