// What companions send: filing, taking images, numbering bones.

#include <array>
#include <cstddef>
#include <cstring>
#include <string>
#include <vector>

#include "check/support/bone_numbers.h"
#include "check/support/host_test.h"
#include "check/support/pieces.h"
#include "check/support/requirement.h"

namespace check::intake {
namespace {

using standin::Companion;
using standin::Host;
using standin::Kind;
using standin::RendererInstance;
using tarvo::Picture;
using Numbers = std::vector<int>;

constexpr A_long kLayerWidth = 200;  // of the output as long as there are no pieces

class Intake : public HostTest {
 protected:
  /// A companion that BoneNumbers can identify.
  Companion& AddBone(Host& host, int number, int position = -1) {
    Companion& companion = host.AddCompanion(TheLayer(), std::to_string(number), position);
    BoneNumbers::SetUpBone(companion, number);
    return companion;
  }

  /// A companion with a piece and one image.
  Companion& AddPiece(Host& host, const Picture& image) {
    Companion& companion = host.AddCompanion(TheLayer(), "A");
    companion.pieces = {Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
    companion.imageA.Set(image);
    return companion;
  }

  static A_long WidthOf(Host& host, RendererInstance& renderer) {
    return host.FrameSetup(renderer).width;
  }
};

CHECK_F(Intake, NumbersActiveCompanionsFromTheTop,
        "Bone 1 is the first active companion of the stack, bone 2 the second; other effects do "
        "not count, and inactive companions are not drawn.") {
  Host& host = StartHost();
  Companion& first = AddBone(host, 1);
  auto& renderer = host.AddRenderer(TheLayer());
  Companion& last = AddBone(host, 3);
  Companion& middle = AddBone(host, 2, 2);
  host.AddEffect(TheLayer(), "qez_tarvo", 0);
  host.AddEffect(TheLayer(), "QEZ_Tarvo ", 2);
  host.AddEffect(TheLayer(), std::string(47, 'x'));  // as long as hosts have them
  for (Companion* bone : {&last, &first, &middle}) {
    host.Send(*bone, renderer);
  }
  EXPECT_EQ(BoneNumbers::Seen(host, renderer, 3), (Numbers{1, 2, 3}));

  first.active = false;
  host.Send(last, renderer);
  EXPECT_EQ(BoneNumbers::Seen(host, renderer, 2), (Numbers{2, 3}));
  middle.active = false;
  host.Send(last, renderer);
  EXPECT_EQ(BoneNumbers::Seen(host, renderer, 2), (Numbers{3, 3}));
}

CHECK_F(Intake, KeepsTheOldNumbersWithoutALayer,
        "When the host cannot name the layer, bones keep their numbers.") {
  Host& host = StartHost();
  Companion& first = AddBone(host, 1);
  auto& renderer = host.AddRenderer(TheLayer());
  Companion& last = AddBone(host, 2);
  host.Send(first, renderer);
  host.Send(last, renderer);
  renderer.layerIsKnown = false;
  first.active = false;
  EXPECT_TRUE(host.Send(last, renderer).command.Ok());
  const auto pieces = WarpedPieces(1, 3, {0, 0, 100, 100}, 8, 8);
  auto record = RecordOf(pieces, 3);
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_NONE);
  EXPECT_EQ(BoneNumbers::Seen(host, renderer, 2), (Numbers{1, 2}));
}

/// The record lies at an odd address, between bytes that must not change.
CHECK_F(Intake, ReadsRecordsAtAnyAddressAndChangesTheirFlagsAlone,
        "A record may have any address; of its bytes only the flags of images that were copied "
        "change, and those images' worlds are disposed of.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "A");
  const std::vector<PieceQuad> pieces{Piece({0, 0, 40, 20}, {1, 1, 6, 3}, 0.5, TARVO_IMAGE_B)};
  auto record = RecordOf(pieces, 1);
  const auto world = host.worlds.From(Pattern(8, 5, 1), "image B");
  std::memcpy(record.imageB, &world, sizeof record.imageB);
  record.newImageB = 7;
  record.newImageA = 1;  // with an image A of no size: nothing is taken
  record.opacityB = 1;
  std::array<unsigned char, sizeof record + 3> bytes{};
  bytes.fill(0xA5);
  std::memcpy(bytes.data() + 1, &record, sizeof record);
  auto expected = bytes;
  expected[1 + offsetof(CompanionSlot, newImageB)] = 0;

  EXPECT_EQ(host.SendRecord(renderer, bytes.data() + 1).code, PF_Err_NONE);
  EXPECT_EQ(bytes, expected);
  EXPECT_FALSE(host.worlds.IsLive(world));
  EXPECT_EQ(host.tracker.Count(Kind::kWorld), 1U);  // the plug-in's own
  const auto frame = host.Render(renderer);
  EXPECT_EQ(frame.picture.width, 44);
  EXPECT_EQ(frame.picture.At(22, 11).alpha, 255);
}

CHECK_F(Intake, RefusesImplausibleRecords,
        "An implausible record, or none, returns 516 and changes nothing.") {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "A");
  const std::vector<PieceQuad> pieces(2);
  const auto* const first = reinterpret_cast<const char*>(pieces.data());
  const auto at = [&](std::ptrdiff_t bytes) {
    return reinterpret_cast<const PieceQuad*>(first + bytes);
  };
  struct Case {
    const char* what;
    std::int32_t effectIndex;
    const PieceQuad* begin;
    const PieceQuad* end;
  };
  const Case cases[] = {
      {"index below 0", -1, pieces.data(), at(312)},
      {"index beyond all stacks", 65'536, pieces.data(), at(312)},
      {"end before start", 1, at(156), pieces.data()},
      {"part of a piece", 1, pieces.data(), at(155)},
      {"null with a length", 1, nullptr, at(312)},
      {"more than a million", 1, pieces.data(), at(156LL * 1'000'001)},
  };
  for (const Case& wrong : cases) {
    auto record = RecordOf(pieces, wrong.effectIndex);
    record.quads.first = wrong.begin;
    record.quads.last = wrong.end;
    const CompanionSlot before = record;
    EXPECT_EQ(host.SendRecord(renderer, &record).code, 516) << wrong.what;
    EXPECT_EQ(std::memcmp(&record, &before, sizeof record), 0) << wrong.what;
    EXPECT_EQ(WidthOf(host, renderer), kLayerWidth) << wrong.what;
  }
  EXPECT_EQ(host.SendRecord(renderer, nullptr).code, 516);
}

/// A message without an image must neither lose the pending image nor bring in the sender's.
CHECK_F(Intake, KeepsAPendingImageUntilANewOneArrives,
        "A pending image is kept over messages without one, and replaced by a new one.") {
  constexpr tarvo::Rgba kRed{.red = 200, .green = 0, .blue = 0, .alpha = 255};
  constexpr tarvo::Rgba kBlue{.red = 0, .green = 0, .blue = 200, .alpha = 255};
  Host& host = StartHost();
  Companion& companion = AddPiece(host, Picture(8, 8, kRed));
  auto& renderer = host.AddRenderer(TheLayer());
  EXPECT_TRUE(host.Send(companion, renderer).tookA);
  host.Send(companion, renderer);
  EXPECT_EQ(host.tracker.Count(Kind::kWorld), 1U);
  EXPECT_EQ(host.Render(renderer).picture.At(22, 22), kRed);

  const std::size_t others = host.tracker.Count(Kind::kWorld);
  companion.imageA.Set(Picture(8, 8, kRed));
  EXPECT_TRUE(host.Send(companion, renderer).tookA);
  companion.imageA.Set(Picture(9, 7, kBlue));
  EXPECT_TRUE(host.Send(companion, renderer).tookA);
  EXPECT_EQ(host.tracker.Count(Kind::kWorld), others + 1);
  EXPECT_EQ(host.Render(renderer).picture.At(22, 22), kBlue);
}

/// After the first failure the error chain skips the remaining host calls, yet the flag of image B
/// is cleared too. A sender's world whose disposal was skipped is abandoned.
CHECK_F(Intake, LeaksNothingWhenACopyFails,
        "When the host fails to copy an image, its code is the result, the flags of both images "
        "are cleared and the plug-in leaks no world; the next message and frame succeed.") {
  const struct {
    std::string operation;
    std::size_t abandoned;
  } cases[] = {{"new_world", 2}, {"copy", 2}, {"dispose_world", 1}};
  for (const auto& [operation, abandoned] : cases) {
    Host& host = StartHost();
    Companion& companion = AddPiece(host, Pattern(8, 8, 1));
    companion.imageB.Set(Pattern(6, 6, 2));
    auto& renderer = host.AddRenderer(TheLayer());
    host.injector.FailOperation(operation, 1, {.code = 55});
    const standin::SendResult failed = host.Send(companion, renderer);
    EXPECT_EQ(failed.command.code, 55) << operation;
    EXPECT_TRUE(failed.tookA && failed.tookB) << operation;
    EXPECT_EQ(host.AbandonedWorlds(), abandoned) << operation;
    EXPECT_EQ(host.tracker.Count(Kind::kWorld), operation == "dispose_world" ? 1U : 0U)
        << operation;
    EXPECT_TRUE(host.Send(companion, renderer).command.Ok()) << operation;
    EXPECT_TRUE(host.Render(renderer).command.Ok()) << operation;
    companion.SendImagesAgain();
    EXPECT_TRUE(host.Send(companion, renderer).tookA) << operation;
    EXPECT_EQ(host.Render(renderer).picture.At(22, 22).alpha, 255) << operation;
    EndHost();
  }
}

/// The host has disposed of it all the same, as in every failed disposal.
CHECK_F(Intake, AcceptsAnImageWhosePredecessorCannotBeDisposedOf,
        "When the host refuses to dispose of a pending image, the new one is accepted all the "
        "same, and the refusal is the result unless something failed after it.") {
  constexpr tarvo::Rgba kBlue{.red = 0, .green = 0, .blue = 200, .alpha = 255};
  for (const PF_Err later : {0, 62}) {
    Host& host = StartHost();
    Companion& companion = AddPiece(host, Pattern(8, 8, 1));
    auto& renderer = host.AddRenderer(TheLayer());
    ASSERT_TRUE(host.Send(companion, renderer).tookA);
    companion.imageA.Set(Picture(8, 8, kBlue));
    host.injector.FailOperation("dispose_world", 1, {.code = 61});
    if (later != 0) {
      host.injector.FailOperation("AEGP_GetEffectFlags", 1, {.code = later});
    }
    const standin::SendResult sent = host.Send(companion, renderer);
    EXPECT_EQ(sent.command.code, later != 0 ? later : 61);
    EXPECT_TRUE(sent.tookA);
    EXPECT_EQ(host.AbandonedWorlds(), 0U);
    EXPECT_EQ(host.tracker.Count(Kind::kWorld), 1U);
    EXPECT_TRUE(host.Send(companion, renderer).command.Ok());
    EXPECT_EQ(host.Render(renderer).picture.At(22, 22), kBlue);
    EndHost();
  }
}

CHECK_F(Intake, CountsAFailedDisposalUnlessSomethingFailedBefore,
        "When the host fails to dispose of a reference, its code is the result, unless something "
        "failed before it.") {
  Host& host = StartHost();
  Companion& companion = AddPiece(host, Pattern(8, 8, 1));
  auto& renderer = host.AddRenderer(TheLayer());
  host.injector.FailOperation("AEGP_DisposeEffect", 1, {.code = 61});
  EXPECT_EQ(host.Send(companion, renderer).command.code, 61);
  host.injector.FailOperation("AEGP_GetEffectFlags", 1, {.code = 62});
  host.injector.FailOperation("AEGP_DisposeEffect", 1, {.code = 61});
  EXPECT_EQ(host.Send(companion, renderer).command.code, 62);
  EXPECT_EQ(WidthOf(host, renderer), kLayerWidth);  // no companion was numbered
}

}  // namespace
}  // namespace check::intake
