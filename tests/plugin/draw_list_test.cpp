// The order of pieces of equal depth, which pictures show in part only.

#include "plugin/render/draw_list.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace {

TEST(SortTest, EqualDepthsAreReorderedByThePartitionsSwaps) {
  // The expected orders are computed by hand: [1a 1b] swaps its two, [1a 1b 1c] its outer two.
  const auto order = [](std::vector<double> depths) {
    std::vector<plugin::DrawPiece> pieces;
    for (const double depth : depths) {
      pieces.push_back({nullptr, depth, pieces.size(), {}});
    }
    plugin::SortByFallingDepth(pieces);
    std::vector<std::size_t> places;
    for (const auto& piece : pieces) {
      places.push_back(piece.slot);
    }
    return places;
  };
  using Places = std::vector<std::size_t>;
  EXPECT_EQ(order({}), Places{});
  EXPECT_EQ(order({7}), Places{0});
  EXPECT_EQ(order({1, 1}), (Places{1, 0}));
  EXPECT_EQ(order({1, 1, 1}), (Places{2, 1, 0}));
  EXPECT_EQ(order({1, 3, 2}), (Places{1, 2, 0}));
  EXPECT_EQ(order({1, 2, 1, 2}), (Places{3, 1, 0, 2}));
  EXPECT_EQ(order({2, 2, 1, 1, 2}), (Places{4, 1, 0, 3, 2}));
  EXPECT_EQ(order({5, 1, 5, 1, 5, 1, 5}), (Places{2, 4, 0, 6, 5, 1, 3}));
}

}  // namespace
