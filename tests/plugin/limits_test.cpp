// Extreme numbers and unterminated texts that the stand-in host cannot produce.

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "plugin/host/match_name.h"
#include "plugin/render/camera.h"

namespace {

/// What follows the field in memory would go on with the name.
TEST(MatchNameTest, EndsWithItsFieldWithoutATerminator) {
  struct {
    plugin::MatchName name;
    char behind[8] = "x";
  } field;
  const std::string longest(sizeof field.name, 'x');
  std::copy(longest.begin(), longest.end(), field.name.Buffer());
  EXPECT_TRUE(field.name.Is(longest));
  EXPECT_FALSE(field.name.Is(longest + "x"));
}

TEST(TilesTest, CoverOutputsUpToTheLargestNumber) {
  constexpr A_long kMost = std::numeric_limits<A_long>::max();
  const auto tiles = plugin::TilesOf(kMost, 3, 1'000'000'000, 4096);
  ASSERT_EQ(tiles.size(), 3U);
  std::int64_t covered = 0;
  for (const plugin::Tile& tile : tiles) {
    EXPECT_EQ(tile.x, covered);
    EXPECT_EQ(tile.height, 3);
    covered += tile.width;
  }
  EXPECT_EQ(covered, kMost);
  EXPECT_TRUE(plugin::TilesOf(0, 3, 64, 64).empty());
  EXPECT_TRUE(plugin::TilesOf(3, 3, 0, 64).empty());
}

}  // namespace
