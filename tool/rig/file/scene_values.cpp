#include "tool/rig/file/scene_values.h"

#include <algorithm>

#include "base/files/escaped_text.h"

namespace tarvo {
namespace {

Point ReadPoint(const SceneNode& node) {
  const auto items = node.Items(2, "[x, y]");
  return items.empty() ? Point{} : Point{items[0].Number(), items[1].Number()};
}

}  // namespace

ZPair ReadEnds(const SceneNode& node, Range range) {
  if (node.IsNumber()) {
    const double both = node.Number(range);
    return {both, both};
  }
  if (!node.IsList()) {
    node.Expected("number or [start, end]");
    return {};
  }
  const auto items = node.Items(2, "number or [start, end]");
  return items.empty() ? ZPair{} : ZPair{items[0].Number(range), items[1].Number(range)};
}

template <std::size_t kCount>
std::array<Point, kCount> ReadPoints(const SceneNode& node) {
  std::array<Point, kCount> points{};
  std::ranges::transform(node.Items(kCount, std::to_string(kCount) + " points"), points.begin(),
                         ReadPoint);
  return points;
}

template std::array<Point, 2> ReadPoints(const SceneNode& node);
template std::array<Point, 4> ReadPoints(const SceneNode& node);

std::size_t ReadImageName(const SceneNode& node, const NameIndex& images) {
  const std::string name = node.Text();
  const auto found = images.First(name);
  if (!found && !name.empty()) {
    node.Fault("no image is called \"" + Shortened(name, kLongestQuote) + "\"" +
               node.Hint(name, images.Names()));
  }
  return found.value_or(images.Names().size());
}

}  // namespace tarvo
