#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "base/image/picture.h"

namespace tarvo {

/// The difference of two pictures, in 8-bit steps. Colour counts as it is seen, multiplied by its
/// alpha: where next to nothing is seen, the straight colour of a pixel means next to nothing.
struct Comparison {
  std::size_t compared = 0;  ///< pixels
  int largest = 0;           ///< steps, in any channel of any compared pixel
  std::size_t beyond = 0;    ///< compared pixels that differ by more than the tolerance
  int x = 0;                 ///< the first pixel with the largest difference
  int y = 0;

  /// "12345 pixels compared, largest difference 2 at (3, 4), 0 beyond the tolerance"
  [[nodiscard]] std::string Text() const;
};

/// Compares the pixels whose entry in `where` is true (all, when it is empty). Throws
/// std::invalid_argument when the pictures differ in size, or `where` has neither one entry a pixel
/// nor none.
Comparison Compare(const Picture& one, const Picture& other, int tolerance,
                   const std::vector<bool>& where = {});

/// The two pictures side by side, and beside them their difference: black where they are the
/// same, dim where the difference is within the tolerance, and from red to white beyond it. Without
/// the third part where the pictures differ in size.
Picture SideBySide(const Picture& one, const Picture& other, int tolerance);

}  // namespace tarvo
