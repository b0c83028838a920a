// What companions send: filing, taking images, numbering bones; and the extent of the pieces.

#include <array>
#include <cstring>
#include <limits>
#include <vector>

#include "scene/output_extent.h"
#include "scene/scene_store.h"
#include "tests/plugin/plugin_fixture.h"
#include "tests/support/pieces.h"

namespace {

using standin::Companion;
using standin::Host;
using standin::RendererInstance;
using tarvo::ImageFamily;
using Numbers = std::vector<A_long>;

class IntakeTest : public PluginTest {
 protected:
  static tarvo::Scene& SceneOf(const RendererInstance& renderer) {
    return *tarvo::gScenes.Reach(renderer.sequenceData);
  }

  /// Whether a handler has made the instance a scene yet.
  static bool HasScene(const RendererInstance& renderer) {
    return static_cast<const tarvo::SceneStore*>(*renderer.sequenceData)->scene != nullptr;
  }

  Companion& AddPiece(Host& host, const std::string& name, int position = -1) {
    auto& companion = host.AddCompanion(TheLayer(), name, position);
    companion.pieces = {support::Piece({10, 10, 40, 40}, {1, 1, 6, 6}, 0.5)};
    return companion;
  }

  static CompanionSlot RecordOf(const std::vector<PieceQuad>& pieces, std::int32_t effectIndex) {
    CompanionSlot record{};
    record.quads = {
        pieces.data(), pieces.data() + pieces.size(), pieces.data() + pieces.size(), {}};
    record.effectIndex = effectIndex;
    return record;
  }
};

TEST_F(IntakeTest, BonesAreTheSwitchedOnCompanionsFromTheTop) {
  Host& host = StartHost();
  auto& first = AddPiece(host, "A");
  auto& renderer = host.AddRenderer(TheLayer());
  auto& last = AddPiece(host, "C");
  host.AddEffect(TheLayer(), "qez_tarvo");
  host.AddEffect(TheLayer(), "QEZ_Tarvo ");
  host.Send(last, renderer);
  EXPECT_EQ(SceneOf(renderer).boneOrdinal, (Numbers{0, -1, 1, -1, -1}));
  EXPECT_EQ(SceneOf(renderer).slots.size(), 3U);
  EXPECT_TRUE(SceneOf(renderer).slots[1].quads.empty());

  host.Send(first, renderer);
  EXPECT_EQ(SceneOf(renderer).slots[0].quads.size(), 1U);
  first.active = false;
  host.Send(last, renderer);
  EXPECT_EQ(SceneOf(renderer).boneOrdinal, (Numbers{-1, -1, 0, -1, -1}));
  EXPECT_TRUE(SceneOf(renderer).slots[0].quads.empty());
  EXPECT_EQ(SceneOf(renderer).slots[2].quads.size(), 1U);
}

/// A sender that is not on the layer: filed, and emptied as no companion stands at its place.
TEST_F(IntakeTest, ARecordFromBeyondTheStackIsFiledAndEmptied) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  AddPiece(host, "A");
  const auto pieces = support::WarpedPieces(1, 3, {0, 0, 100, 100}, 8, 8);
  auto record = RecordOf(pieces, 5);
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_NONE);
  EXPECT_EQ(SceneOf(renderer).slots.size(), 6U);
  EXPECT_TRUE(SceneOf(renderer).slots[5].quads.empty());
  EXPECT_EQ(SceneOf(renderer).boneOrdinal, (Numbers{-1, 0}));
}

TEST_F(IntakeTest, WhenTheLayerCannotBeReadTheOldNumbersStay) {
  Host& host = StartHost();
  auto& companion = AddPiece(host, "A");
  auto& renderer = host.AddRenderer(TheLayer());
  host.Send(companion, renderer);
  renderer.layerIsKnown = false;
  const auto pieces = support::WarpedPieces(1, 3, {0, 0, 100, 100}, 8, 8);
  auto record = RecordOf(pieces, 3);
  EXPECT_EQ(host.SendRecord(renderer, &record).code, PF_Err_NONE);
  EXPECT_EQ(SceneOf(renderer).boneOrdinal, (Numbers{0, -1, -1, -1}));
  EXPECT_EQ(SceneOf(renderer).slots[0].quads.size(), 1U);
}

/// The record lies at an odd address, between bytes that must not change.
TEST_F(IntakeTest, RecordsAreReadAtAnyAlignmentAndOnlyTheirFlagsChange) {
  Host& host = StartHost();
  auto& renderer = host.AddRenderer(TheLayer());
  host.AddCompanion(TheLayer(), "A");
  const auto pieces = support::WarpedPieces(4, 3, {0, 0, 100, 100}, 8, 8);
  auto record = RecordOf(pieces, 1);
  const auto world = host.worlds.From(support::Pattern(8, 5, 1), "image B");
  std::memcpy(record.imageB, &world, sizeof record.imageB);
  record.newImageB = 7;
  record.newImageA = 1;  // with an image A of no size: nothing is taken
  std::array<unsigned char, sizeof record + 3> bytes{};
  bytes.fill(0xA5);
  std::memcpy(bytes.data() + 1, &record, sizeof record);
  auto expected = bytes;
  expected[1 + offsetof(CompanionSlot, newImageB)] = 0;

  EXPECT_EQ(host.SendRecord(renderer, bytes.data() + 1).code, PF_Err_NONE);
  EXPECT_EQ(bytes, expected);
  const tarvo::Slot& slot = SceneOf(renderer).slots[1];
  EXPECT_FALSE(slot.images[tarvo::kImageA].pending);
  EXPECT_TRUE(slot.images[tarvo::kImageB].pending);
  EXPECT_EQ(slot.images[tarvo::kImageB].width, 8);
  EXPECT_EQ(slot.images[tarvo::kImageB].height, 5);
  EXPECT_EQ(std::memcmp(slot.quads.data(), pieces.data(), 3 * sizeof(PieceQuad)), 0);
}

TEST_F(IntakeTest, RecordsThatCannotBeMeantAreRefusedUntouched) {
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
    EXPECT_FALSE(HasScene(renderer)) << wrong.what;
  }
  EXPECT_EQ(host.SendRecord(renderer, nullptr).code, 516);
}

/// A message without an image must neither lose the image that waits nor bring in the sender's.
TEST_F(IntakeTest, AWaitingImageOutlivesMessagesWithoutOneAndGivesWayToANewOne) {
  Host& host = StartHost();
  auto& companion = AddPiece(host, "A");
  auto& renderer = host.AddRenderer(TheLayer());
  companion.imageA.Set(support::Pattern(8, 8, 1));
  EXPECT_TRUE(host.Send(companion, renderer).tookA);
  const auto waiting = SceneOf(renderer).slots[0].images[0].taken;
  host.Send(companion, renderer);
  const auto& image = SceneOf(renderer).slots[0].images[0];
  ASSERT_TRUE(image.taken && waiting);
  EXPECT_EQ(image.taken->data, waiting->data);
  EXPECT_TRUE(image.pending);
  companion.imageA.Set(support::Pattern(9, 7, 1));
  EXPECT_TRUE(host.Send(companion, renderer).tookA);
  EXPECT_FALSE(host.worlds.Alive(*waiting));
  EXPECT_EQ(image.width, 9);
  EXPECT_EQ(host.books.Count(standin::Kind::kWorld), 1U);
}

/// After a failed take the flag is cleared and the slot marked, the sender keeps its world, nothing
/// of ours is left, and the next frame clears the mark. Image B is not taken either: the chain.
TEST_F(IntakeTest, FailedTakesLoseNothing) {
  for (const char* operation : {"new_world", "copy", "dispose_world"}) {
    Host& host = StartHost();
    auto& companion = AddPiece(host, "A");
    auto& renderer = host.AddRenderer(TheLayer());
    companion.imageA.Set(support::Pattern(8, 8, 1));
    companion.imageB.Set(support::Pattern(6, 6, 2));
    host.gate.FailOperation(operation, 1, {.code = 55});
    EXPECT_EQ(host.Send(companion, renderer).command.code, 55) << operation;
    const tarvo::Slot& slot = SceneOf(renderer).slots[0];
    EXPECT_TRUE(slot.images[tarvo::kImageA].pending && slot.images[tarvo::kImageB].pending);
    EXPECT_EQ(slot.images[tarvo::kImageB].width, 6);
    EXPECT_EQ(slot.images[tarvo::kImageA].taken.has_value(), operation[0] == 'd') << operation;
    EXPECT_FALSE(slot.images[tarvo::kImageB].taken.has_value());
    // The chain kept the bones from being numbered: the slot has pieces again from the next
    // message.
    EXPECT_TRUE(host.Send(companion, renderer).command.Ok());
    EXPECT_TRUE(host.Render(renderer).command.Ok());
    EXPECT_FALSE(slot.images[tarvo::kImageA].pending || slot.images[tarvo::kImageB].pending);
    TearDown();
  }
}

TEST_F(IntakeTest, AFailedDisposalOfAReferenceIsTheResultUnlessSomethingFailedBefore) {
  Host& host = StartHost();
  auto& companion = AddPiece(host, "A");
  auto& renderer = host.AddRenderer(TheLayer());
  host.gate.FailOperation("AEGP_DisposeEffect", 1, {.code = 61});
  EXPECT_EQ(host.Send(companion, renderer).command.code, 61);
  host.gate.FailOperation("AEGP_GetEffectFlags", 1, {.code = 62});
  host.gate.FailOperation("AEGP_DisposeEffect", 1, {.code = 61});
  EXPECT_EQ(host.Send(companion, renderer).command.code, 62);
  EXPECT_EQ(SceneOf(renderer).boneOrdinal, (Numbers{-1, -1}));
}

// ---- Extent

struct ExtentCase {
  const char* what;
  std::vector<std::array<double, 2>> corners;
  tarvo::LayerFrame layer;
  A_long width;
  A_long height;
  PF_Point origin;
};

TEST(OutputExtentTest, EnclosesThePiecesWithAMargin) {
  const std::vector<std::array<double, 2>> quad{{10, 20}, {110, 20}, {110, 70}, {10, 70}};
  const std::vector<std::array<double, 2>> wide{{-50.25, -10}, {30, -10}, {30, 90}, {-50.25, 90}};
  const double huge = 1e300;
  const double none = std::numeric_limits<double>::quiet_NaN();
  const tarvo::LayerFrame full{1920, 1080, 1, 1, 0, 0};
  const tarvo::LayerFrame half{960, 540, 2, 2, 0, 0};
  const tarvo::LayerFrame shifted{1920, 1080, 1, 1, 30, 40};
  const ExtentCase cases[] = {
      {"no piece", {}, full, 1920, 1080, {0, 0}},
      {"no piece, shifted", {}, shifted, 1920, 1080, {-30, -40}},
      {"one quad", quad, full, 110, 56, {-5, -17}},
      {"half resolution", quad, half, 56, 29, {-2, -8}},
      {"shifted", quad, shifted, 110, 56, {-35, -57}},
      {"single precision", wide, full, 90, 110, {55, 15}},
      {"a point between pixels", {{3.5, 4.5}}, full, 1, 1, {-3, -4}},
      {"a point", {{3, 4}}, full, 0, 0, {-3, -4}},
      {"a corner that is no number", {{10, 20}, {none, 5}, {110, 70}}, full, 110, 56, {-5, -17}},
      {"nothing but such corners", {{none, 5}}, full, 1920, 1080, {0, 0}},
      {"beyond single precision",
       {{-huge, 0}, {huge, 10}},
       full,
       30'000,
       12,
       {std::numeric_limits<A_long>::max(), 1}},
  };
  for (const ExtentCase& expected : cases) {
    tarvo::Scene scene;
    scene.slots.resize(3);  // slots without pieces add nothing
    for (std::size_t at = 0; at < expected.corners.size(); at += 4) {
      PieceQuad& piece = scene.slots[1].quads.emplace_back();
      for (std::size_t corner = 0; corner < 4; ++corner) {
        const auto& [x, y] = expected.corners[std::min(at + corner, expected.corners.size() - 1)];
        piece.corners[corner][0] = x;
        piece.corners[corner][1] = y;
      }
    }
    const auto extent = tarvo::ComputeOutputExtent(scene, expected.layer);
    EXPECT_EQ(extent.width, expected.width) << expected.what;
    EXPECT_EQ(extent.height, expected.height) << expected.what;
    EXPECT_EQ(extent.origin.h, expected.origin.h) << expected.what;
    EXPECT_EQ(extent.origin.v, expected.origin.v) << expected.what;
  }
}

}  // namespace
