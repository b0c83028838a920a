#include "tool/explain/explanation.h"

#include <algorithm>
#include <utility>

#include "base/files/input_error.h"
#include "tool/player/overlap_bones.h"
#include "tool/reference/overlap_pairs.h"
#include "tool/rig/active_bones.h"

namespace tarvo {
namespace {

/// Whether the user can give a parameter a value: the list leaves out buttons and groups.
bool HasValue(const standin::Parameter& parameter) {
  const auto type = parameter.definition.param_type;
  return type == PF_Param_FLOAT_SLIDER || type == PF_Param_CHECKBOX || type == PF_Param_POPUP;
}

std::vector<SliderRow> SlidersOf(const standin::RendererInstance& renderer, std::size_t bones) {
  std::vector<SliderRow> rows;
  for (std::size_t i = 0; i < renderer.parameters.size(); ++i) {
    const standin::Parameter& parameter = renderer.parameters[i];
    if (!HasValue(parameter)) {
      continue;
    }
    SliderRow row{.parameter = static_cast<int>(i),
                  .label = parameter.Name(),
                  .value = parameter.Value(),
                  .shown = !parameter.Hidden(),
                  .bones = {}};
    for (std::size_t bone = 0; bone < bones; ++bone) {
      const int start = StartSliderOf(bone);
      if (row.parameter == start || row.parameter == start + 1) {
        row.bones.push_back(bone);
      }
    }
    rows.push_back(std::move(row));
  }
  return rows;
}

std::vector<Tie> TiesOf(const Overlap& overlap) {
  const auto& pieces = overlap.Pieces();
  std::vector<Tie> ties;
  for (std::size_t first = 0; first < pieces.size();) {
    std::size_t last = first;
    while (last + 1 < pieces.size() && pieces[last + 1].depth == pieces[first].depth) {
      ++last;
    }
    if (last > first) {
      Tie tie{.first = first, .last = last};
      const OverlapPairs pairs(&pieces[first], &pieces[last] + 1);
      const bool areAll =
          pairs.ForEach(kMostComparisons, [&](const PlacedPiece& one, const PlacedPiece& other) {
            tie.overlapping = Overlaps(one.corners, other.corners);
            return !tie.overlapping;
          });
      if (!areAll) {
        throw InputError({"explain: more than " + std::to_string(kMostComparisons) +
                          " pairs of pieces of equal depth are in the same columns"});
      }
      ties.push_back(tie);
    }
    first = last + 1;
  }
  return ties;
}

PixelReport Tell(const Overlap& overlap, const Picture& frame, int x, int y) {
  const Point centre{x + 0.5, y + 0.5};
  PixelReport report{.x = x, .y = y, .breakdown = ExplainPixel(overlap, overlap.At(centre))};
  report.model = Straight(report.breakdown.premultiplied);
  const int column = x + frame.originX;
  const int row = y + frame.originY;
  if (column >= 0 && column < frame.width && row >= 0 && row < frame.height) {
    report.plugin = frame.At(column, row);
  }
  report.comparable = (report.breakdown.ownersComparable || !overlap.View().exact) &&
                      std::ranges::none_of(overlap.Pieces(), [&](const PlacedPiece& piece) {
                        return DistanceToSides(piece.corners, centre) < kEdgeMargin;
                      });
  return report;
}

/// Names of the images of the active bones, from the top of the stack.
void NameImages(const Scene& scene, Explanation& explanation) {
  for (const std::size_t index : ActiveBones(scene)) {
    const Bone& bone = scene.bones[index];
    explanation.imageNames.push_back(scene.images[bone.image].name);
    explanation.imageBNames.push_back(bone.imageB ? scene.images[*bone.imageB].name : "");
  }
}

}  // namespace

const std::string& Explanation::ImageNameOf(const PlacedPiece& piece) const {
  return (piece.from == ImageChoice::kA ? imageNames : imageBNames).at(piece.bone);
}

bool Explanation::IsTied(std::size_t piece) const {
  const auto after = std::ranges::upper_bound(ties, piece, {}, &Tie::first);
  return after != ties.begin() && piece <= (after - 1)->last;
}

Explanation Explain(const standin::Host& host, const Scene& scene, const Picture& frame,
                    const std::optional<std::pair<int, int>>& pixel) {
  const standin::RendererInstance& renderer = PlayedRenderer(host);
  const OverlapView layer{.exact = IsExact(renderer)};
  Explanation explanation{.overlap = Overlap(BonesOn(PlayedLayer(host), renderer), layer)};
  explanation.sliders = SlidersOf(renderer, explanation.overlap.Bones().size());
  explanation.ties = TiesOf(explanation.overlap);
  NameImages(scene, explanation);
  if (pixel) {
    explanation.pixel = Tell(explanation.overlap, frame, pixel->first, pixel->second);
  }
  return explanation;
}

const char* NameOf(Precedence precedence) {
  switch (precedence) {
    case Precedence::kDepth:
      return "depth";
    case Precedence::kBoneNumber:
      return "bone number";
    case Precedence::kSort:
      return "sort";
  }
  return "";
}

}  // namespace tarvo
