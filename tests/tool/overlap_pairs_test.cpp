#include "tool/reference/overlap_pairs.h"

#include <cstddef>
#include <vector>

#include <gtest/gtest.h>

namespace {

using tarvo::PlacedPiece;

/// Squares of 10 pixels, each so far to the right of the one before.
std::vector<PlacedPiece> Squares(std::size_t count, double step) {
  std::vector<PlacedPiece> pieces(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double left = static_cast<double>(count - i) * step;
    pieces[i].index = i;
    pieces[i].corners = {{{left, 0}, {left + 10, 0}, {left + 10, 10}, {left, 10}}};
  }
  return pieces;
}

TEST(OverlapPairs, AreFoundInTimeThatDependsOnThem) {
  const struct {
    std::size_t count;
    double step;
    std::size_t most;
    bool areAll;
    std::size_t found;
  } cases[] = {
      {100'000, 20, 0, true, 0},        // none shares columns with another
      {1000, 6, 999, true, 999},        // each with the next
      {100'000, 0, 1000, false, 1000},  // all at one place: a limit
      {4, 0, 6, true, 6},               // every pair once
  };
  for (const auto& [count, step, most, areAll, found] : cases) {
    const std::vector<PlacedPiece> pieces = Squares(count, step);
    std::size_t visited = 0;
    const tarvo::OverlapPairs pairs(pieces.data(), pieces.data() + pieces.size());
    EXPECT_EQ(pairs.ForEach(most,
                            [&](const PlacedPiece& one, const PlacedPiece& other) {
                              EXPECT_NE(one.index, other.index);
                              ++visited;
                              return true;
                            }),
              areAll);
    EXPECT_EQ(visited, found) << count << " squares, " << step << " pixels apart";
  }
}

}  // namespace
