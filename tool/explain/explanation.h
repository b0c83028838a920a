#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "standin/host/host.h"
#include "tool/reference/overlap.h"
#include "tool/reference/overlap_pixel.h"
#include "tool/rig/scene.h"

/// \file
/// Why the pieces of a frame lie as they do: what `tarvo explain` says.

namespace tarvo {

/// A parameter of the renderer as the user sees it.
struct SliderRow {
  int parameter = 0;
  std::string label;
  double value = 0.0;
  bool shown = false;
  std::vector<std::size_t> bones;  ///< numbers, from 0, of those whose depth it sets
};

/// Pieces of one depth to the last bit, by their places in Overlap::Pieces().
struct Tie {
  std::size_t first = 0;
  std::size_t last = 0;      ///< included
  bool overlapping = false;  ///< some of them lie on one another, so that their order is seen
};

/// One pixel of the layer.
struct PixelReport {
  int x = 0;
  int y = 0;
  PixelBreakdown breakdown;
  Rgba model;               ///< straight
  Rgba plugin;              ///< the plug-in's own pixel; transparent outside of its picture
  bool comparable = false;  ///< not at a piece's edge or an owner's threshold: the two must agree
};

struct Explanation {
  std::vector<SliderRow> sliders;
  Overlap overlap;                      ///< corners in layer pixels
  std::vector<std::string> imageNames;  ///< of each bone, by number
  std::vector<std::string> imageBNames;
  std::vector<Tie> ties;
  std::optional<PixelReport> pixel;

  [[nodiscard]] const std::string& ImageNameOf(const PlacedPiece& piece) const;
  /// True iff another piece has exactly this depth.
  [[nodiscard]] bool IsTied(std::size_t piece) const;
};

/// Explains the frame that a player of `scene` has just rendered at full resolution on this
/// host; `pixel`, if given, is the layer's pixel to explain.
Explanation Explain(const standin::Host& host, const Scene& scene, const Picture& frame,
                    const std::optional<std::pair<int, int>>& pixel);

/// What to call a place in the order: 1 is the front.
inline std::size_t OrderOf(const Overlap& overlap, std::size_t piece) {
  return overlap.Pieces().size() - piece;
}

/// "depth", "bone number" or "sort".
const char* NameOf(Precedence precedence);

/// As text, front to back.
std::string ExplanationText(const Explanation& explanation);
/// As JSON; docs/explain.md describes its form.
std::string ExplanationJson(const Explanation& explanation);

}  // namespace tarvo
