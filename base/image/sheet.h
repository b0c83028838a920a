#pragma once

#include <string>
#include <vector>

#include "base/image/picture.h"

namespace tarvo {

/// A picture on a sheet, and what is written above it.
struct SheetCell {
  std::string label;
  Picture picture;
};

/// The cells row by row, so many in a row, on a dark ground; opaque everywhere if the cells are. A
/// label that is wider than its cell is cut. REQUIRES: a cell, and a column.
Picture MakeSheet(const std::vector<SheetCell>& cells, std::size_t columns);

}  // namespace tarvo
