#include "base/image/sheet.h"

#include <algorithm>
#include <cstddef>

#include "base/image/canvas.h"

namespace tarvo {
namespace {

constexpr int kGap = 8;
constexpr int kLabelHeight = kTextHeight + 4;
constexpr Rgba kSheetGround{36, 36, 36, 255};
constexpr Rgba kSheetInk{240, 240, 240, 255};

/// Labels of a sheet differ at their ends: in a slider's value, in the mode.
std::string WithoutStart(std::string text, int width) {
  while (!text.empty() && TextWidth(text) > width) {
    text.erase(0, 1);
  }
  return text;
}

}  // namespace

Picture MakeSheet(const std::vector<SheetCell>& cells, std::size_t columns) {
  int width = 0;
  int height = 0;
  for (const SheetCell& cell : cells) {
    width = std::max(width, cell.picture.width);
    height = std::max(height, cell.picture.height);
  }
  const auto across = static_cast<int>(std::min(columns, cells.size()));
  const auto down = static_cast<int>((cells.size() + columns - 1) / columns);
  const int stepX = width + kGap;
  const int stepY = height + kLabelHeight + kGap;
  Picture sheet(across * stepX + kGap, down * stepY + kGap, kSheetGround);
  for (std::size_t i = 0; i < cells.size(); ++i) {
    const int left = kGap + static_cast<int>(i % columns) * stepX;
    const int top = kGap + static_cast<int>(i / columns) * stepY;
    WriteText(sheet, left, top + 2, WithoutStart(cells[i].label, width), kSheetInk);
    const Picture& picture = cells[i].picture;
    for (int y = 0; y < picture.height; ++y) {
      for (int x = 0; x < picture.width; ++x) {
        Paint(sheet, left + x, top + kLabelHeight + y, picture.At(x, y));
      }
    }
  }
  return sheet;
}

}  // namespace tarvo
