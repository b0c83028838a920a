#include <cmath>
#include <cstdlib>

#include "base/files/text_table.h"
#include "base/image/colour.h"
#include "base/image/compare.h"
#include "tool/explain/explanation.h"

namespace tarvo {
namespace {

std::string Channels(const Colour& colour) {
  std::string text;
  for (const double channel : colour) {
    const std::string number = Fixed(channel * kSteps, 0);
    text += std::string(number.size() < 4 ? 4 - number.size() : 0, ' ') + number;
  }
  return text.substr(1);
}

std::string Channels(Rgba colour) {
  return std::to_string(colour.red) + " " + std::to_string(colour.green) + " " +
         std::to_string(colour.blue) + " " + std::to_string(colour.alpha);
}

/// "1 piece", "2 pieces"
std::string Counted(std::size_t count, const std::string& what) {
  return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

class Writer {
 public:
  explicit Writer(const Explanation& explanation)
      : explanation_(explanation), overlap_(explanation.overlap) {}

  std::string Write() {
    Sliders();
    Pieces();
    Ties();
    if (explanation_.pixel) {
      Pixel(*explanation_.pixel);
    }
    return std::move(text_);
  }

 private:
  [[nodiscard]] std::string BoneText(std::size_t bone) const {
    return std::to_string(bone + 1) + " " + overlap_.Bones()[bone].name;
  }

  void Sliders() {
    TextTable table("rlrl");
    std::size_t hidden = 0;
    for (const SliderRow& row : explanation_.sliders) {
      if (!row.shown) {
        ++hidden;
        continue;
      }
      std::string bones;
      for (const std::size_t bone : row.bones) {
        bones += (bones.empty() ? "bone " : ", ") + BoneText(bone);
      }
      table.Add({std::to_string(row.parameter), row.label, Shortest(row.value), bones});
    }
    text_ += "Sliders that are shown:\n" + table.Text("  ") + "  and " + std::to_string(hidden) +
             " hidden ones (--json lists them)\n";
  }

  void Pieces() {
    const auto& pieces = overlap_.Pieces();
    text_ += "\nPieces from front to back, " + std::to_string(pieces.size()) + ":\n";
    TextTable table("rrllrrlll");
    table.Add({"", "Z", "", "bone", "piece", "t", "image", "x", "y"});
    for (std::size_t i = pieces.size(); i-- > 0;) {
      const PlacedPiece& piece = pieces[i];
      const Bounds bounds = BoundsOf(piece.corners);
      table.Add({std::to_string(OrderOf(overlap_, i)), Fixed(piece.ownDepth / kDepthPerZ, 6),
                 explanation_.IsTied(i) ? "=" : "", BoneText(piece.bone),
                 std::to_string(piece.index), Fixed(piece.t, 4), explanation_.ImageNameOf(piece),
                 Fixed(bounds.left, 1) + " to " + Fixed(bounds.right, 1),
                 Fixed(bounds.top, 1) + " to " + Fixed(bounds.bottom, 1)});
    }
    text_ += table.Text("  ");
  }

  void Ties() {
    if (explanation_.ties.empty()) {
      return;
    }
    text_ +=
        "\n= Equal depth to the last bit. Neither the bones' numbers nor the order of their "
        "pieces\n"
        "  decides there, but where the exchanges of the renderer's sort leave them:\n";
    std::size_t unseen = 0;
    for (const Tie& tie : explanation_.ties) {
      if (!tie.overlapping) {
        ++unseen;
        continue;
      }
      text_ += "  " + std::to_string(OrderOf(overlap_, tie.last)) + " to " +
               std::to_string(OrderOf(overlap_, tie.first)) +
               ": some overlap, so their order is visible\n";
    }
    if (unseen > 0) {
      text_ += "  and " + Counted(unseen, "group") + " where none overlaps another\n";
    }
  }

  void Pixel(const PixelReport& pixel) {
    const auto& parts = pixel.breakdown.parts;
    text_ += "\nLayer pixel (" + std::to_string(pixel.x) + ", " + std::to_string(pixel.y) + "), " +
             (overlap_.View().exact ? "exact" : "fast") + ": ";
    if (parts.empty()) {
      text_ += "no piece is there.\n";
    } else {
      text_ += Counted(parts.size(), "piece") + ", front first:\n" + Parts(pixel);
      text_ += Steps(pixel);
    }
    text_ += Result(pixel);
  }

  [[nodiscard]] std::string Parts(const PixelReport& pixel) const {
    const auto& parts = pixel.breakdown.parts;
    TextTable table("rlrrrllll");
    table.Add({"", "bone", "piece", "Z", "alpha", "owner", "over pass", "max pass",
               "in front of the next by"});
    for (std::size_t i = parts.size(); i-- > 0;) {
      const PixelPart& part = parts[i];
      const PlacedPiece& piece = overlap_.Pieces()[part.piece];
      table.Add({std::to_string(OrderOf(overlap_, part.piece)), BoneText(piece.bone),
                 std::to_string(piece.index), Fixed(piece.ownDepth / kDepthPerZ, 6),
                 Fixed(part.alpha, 3), part.owner ? "owner" : "",
                 part.composited ? Channels(part.over) : "left out", Channels(part.maxPass),
                 i == 0 ? "" : NameOf(WhyInFront(piece, overlap_.Pieces()[parts[i - 1].piece]))});
    }
    return table.Text("  ");
  }

  /// How to read the two columns of what a piece adds.
  [[nodiscard]] std::string Steps(const PixelReport& pixel) const {
    std::string text =
        "  Every piece is drawn twice: the max pass keeps the greatest value of all pieces in "
        "each\n"
        "  channel, whatever their order; the over pass composites the pieces on it, back to front";
    text += overlap_.View().exact ? ",\n  of each image only its owner where it has one.\n" : ".\n";
    return text + "  Together, red green blue alpha, multiplied by alpha: " +
           Channels(pixel.breakdown.premultiplied) + "\n";
  }

  [[nodiscard]] static std::string Result(const PixelReport& pixel) {
    const Comparison comparison = Compare({1, 1, pixel.model}, {1, 1, pixel.plugin}, 0);
    std::string text = "  Colour, worked out: " + Channels(pixel.model) +
                       "; the plug-in's own: " + Channels(pixel.plugin) + "; difference " +
                       std::to_string(comparison.largest) + "\n";
    if (!pixel.comparable) {
      text +=
          "  (A piece's edge is nearer than a pixel, or an alpha is close to one half: the two "
          "may\n"
          "  differ here.)\n";
    }
    return text;
  }

  const Explanation& explanation_;
  const Overlap& overlap_;
  std::string text_;
};

}  // namespace

std::string ExplanationText(const Explanation& explanation) { return Writer(explanation).Write(); }

}  // namespace tarvo
