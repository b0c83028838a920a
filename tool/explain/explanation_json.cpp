#include <algorithm>
#include <vector>

#include "base/files/json.h"
#include "base/image/compare.h"
#include "tool/explain/explanation.h"

namespace tarvo {
namespace {

Json ToJson(Rgba colour) { return {colour.red, colour.green, colour.blue, colour.alpha}; }

Json ToJson(const SliderRow& row) {
  Json bones = Json::array();
  for (const std::size_t bone : row.bones) {
    bones.push_back(bone + 1);
  }
  return {{"parameter", row.parameter},
          {"label", row.label},
          {"value", row.value},
          {"shown", row.shown},
          {"bones", bones}};
}

Json PieceJson(const Explanation& explanation, std::size_t place) {
  const Overlap& overlap = explanation.overlap;
  const PlacedPiece& piece = overlap.Pieces()[place];
  const Bounds bounds = BoundsOf(piece.corners);
  Json json = {{"order", OrderOf(overlap, place)},
               {"bone", piece.bone + 1},
               {"name", overlap.Bones()[piece.bone].name},
               {"piece", piece.index},
               {"t", piece.t},
               {"z", piece.ownDepth / kDepthPerZ},
               {"depth", piece.depth},
               {"image", explanation.ImageNameOf(piece)},
               {"bounds", {bounds.left, bounds.top, bounds.right, bounds.bottom}},
               {"tied", explanation.IsTied(place)}};
  if (place > 0) {
    json["inFrontOfNextBy"] = NameOf(WhyInFront(piece, overlap.Pieces()[place - 1]));
  }
  return json;
}

Json ToJson(const PixelReport& pixel, const Overlap& overlap) {
  Json pieces = Json::array();
  const std::vector<PixelPart>& parts = pixel.breakdown.parts;
  std::for_each(parts.rbegin(), parts.rend(), [&](const PixelPart& part) {
    pieces.push_back({{"order", OrderOf(overlap, part.piece)},
                      {"sample", part.sample},
                      {"alpha", part.alpha},
                      {"owner", part.owner},
                      {"composited", part.composited},
                      {"over", part.over},
                      {"maxPass", part.maxPass}});
  });
  return {{"at", {pixel.x, pixel.y}},
          {"pieces", pieces},
          {"premultiplied", pixel.breakdown.premultiplied},
          {"model", ToJson(pixel.model)},
          {"plugin", ToJson(pixel.plugin)},
          {"difference", Compare({1, 1, pixel.model}, {1, 1, pixel.plugin}, 0).largest},
          {"comparable", pixel.comparable}};
}

}  // namespace

std::string ExplanationJson(const Explanation& explanation) {
  const Overlap& overlap = explanation.overlap;
  Json json = {{"exact", overlap.View().exact},
               {"sliders", Json::array()},
               {"pieces", Json::array()},
               {"ties", Json::array()}};
  for (const SliderRow& row : explanation.sliders) {
    json["sliders"].push_back(ToJson(row));
  }
  for (std::size_t place = overlap.Pieces().size(); place-- > 0;) {
    json["pieces"].push_back(PieceJson(explanation, place));
  }
  const std::vector<Tie>& ties = explanation.ties;
  std::for_each(ties.rbegin(), ties.rend(), [&](const Tie& tie) {
    json["ties"].push_back({{"first", OrderOf(overlap, tie.last)},
                            {"last", OrderOf(overlap, tie.first)},
                            {"overlapping", tie.overlapping}});
  });
  if (explanation.pixel) {
    json["pixel"] = ToJson(*explanation.pixel, overlap);
  }
  return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

}  // namespace tarvo
