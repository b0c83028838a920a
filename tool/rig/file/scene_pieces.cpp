#include "tool/rig/file/scene_pieces.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <string>
#include <utility>

#include "tool/rig/file/scene_values.h"

namespace tarvo {
namespace {

constexpr std::size_t kMostPieces = 1'000'000;  // what a renderer takes from one companion
constexpr int kMostStripPieces = 1'000;
constexpr int kUsualStripPieces = 8;

template <std::size_t kCount>
std::array<Point, kCount> NeedPoints(const SceneNode& owner, const std::string& key) {
  const auto node = owner.Need(key, std::to_string(kCount) + " points");
  return node ? ReadPoints<kCount>(*node) : std::array<Point, kCount>{};
}

/// Which image the piece or strip samples; a second image must be there to be sampled.
ImageChoice ReadFrom(const SceneNode& owner, bool hasImageB) {
  const auto node = owner.Find("from");
  const std::string from = node ? node->Text() : "A";
  if (from != "A" && from != "B" && !from.empty()) {
    node->Expected(R"("A" or "B")");
  }
  if (from == "B" && !hasImageB) {
    node->Fault("\"B\" needs an imageB of the bone");
  }
  return from == "B" ? ImageChoice::kB : ImageChoice::kA;
}

Piece ReadPiece(const SceneNode& node, bool hasImageB) {
  node.AllowKeys({"corners", "uv", "t", "from"});
  Piece piece;
  piece.corners = NeedPoints<4>(node, "corners");
  piece.texCoords = NeedPoints<4>(node, "uv");
  if (const auto t = node.Need("t", "number")) {
    piece.t = t->Number();
  }
  piece.from = ReadFrom(node, hasImageB);
  return piece;
}

std::vector<Piece> ReadRawPieces(const SceneNode& node, bool hasImageB) {
  const std::vector<SceneNode> items = node.Items();
  if (items.size() > kMostPieces) {
    node.Expected("list of at most " + std::to_string(kMostPieces) + " pieces");
    return {};
  }
  std::vector<Piece> pieces;
  std::ranges::transform(items, std::back_inserter(pieces),
                         [=](const SceneNode& item) { return ReadPiece(item, hasImageB); });
  return pieces;
}

/// The curve, which must lead somewhere; a fault of its own says that it does not.
Curve WithLength(const SceneNode& node, Curve (*read)(const SceneNode&)) {
  const std::size_t faultsBefore = node.FaultCount();
  const Curve curve = read(node);
  if (node.FaultCount() == faultsBefore && CurveLength(curve) == 0.0) {
    node.Fault("distinct points expected, all at one place given");
  }
  return curve;
}

Curve ReadSegment(const SceneNode& node) {
  const auto [start, end] = ReadPoints<2>(node);
  return StraightCurve(start, end);
}

Curve ReadSegmentOrCurve(const SceneNode& node) {
  const std::size_t count = node.IsList() ? node.Items().size() : 0;
  if (count == 2) {
    return ReadSegment(node);
  }
  if (count == 4) {
    return ReadPoints<4>(node);
  }
  node.Expected("2 or 4 points");
  return {};
}

Strip ReadStrip(const SceneNode& node, bool hasImageB) {
  node.AllowKeys({"rest", "width", "pose", "poseWidth", "pieces", "from"});
  Strip strip;
  if (const auto rest = node.Need("rest", "2 points")) {
    strip.rest.middle = WithLength(*rest, ReadSegment);
  }
  if (const auto width = node.Need("width", "number")) {
    strip.rest.startWidth = strip.rest.endWidth = width->PositiveNumber();
  }
  if (const auto pose = node.Need("pose", "2 or 4 points")) {
    strip.pose.middle = ReadPose(*pose);
  }
  strip.pose.startWidth = strip.pose.endWidth = strip.rest.startWidth;
  if (const auto width = node.Find("poseWidth")) {
    const ZPair ends = ReadEnds(*width, kWidths);
    strip.pose.startWidth = ends.start;
    strip.pose.endWidth = ends.end;
  }
  const auto pieces = node.Find("pieces");
  strip.pieces = pieces ? pieces->Integer(1, kMostStripPieces).value_or(1) : kUsualStripPieces;
  strip.from = ReadFrom(node, hasImageB);
  return strip;
}

}  // namespace

Curve ReadPose(const SceneNode& node) { return WithLength(node, ReadSegmentOrCurve); }

BonePieces ReadPieces(const SceneNode& bone) {
  if (!bone.IsObject()) {
    return {};  // a fault already
  }
  const auto pieces = bone.Find("pieces");
  const auto strip = bone.Find("strip");
  const bool hasImageB = bone.Find("imageB").has_value();
  if (pieces && strip) {
    bone.Fault("either pieces or strip expected, both given");
    return {};
  }
  if (pieces) {
    return {ReadRawPieces(*pieces, hasImageB), std::nullopt};
  }
  if (strip) {
    const Strip read = ReadStrip(*strip, hasImageB);
    return {CutStrip(read), read};
  }
  bone.Fault("either pieces or strip expected, neither given");
  return {};
}

}  // namespace tarvo
