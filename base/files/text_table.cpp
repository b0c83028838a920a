#include "base/files/text_table.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <iomanip>
#include <sstream>
#include <utility>

#include "base/files/escaped_text.h"

namespace tarvo {

std::string Fixed(double number, int digits) {
  std::ostringstream text;
  text << std::fixed << std::setprecision(digits) << number;
  return std::move(text).str();
}

std::string Shortest(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

void TextTable::Add(std::vector<std::string> row) {
  std::ranges::transform(row, row.begin(), ForTerminal);
  rows_.push_back(std::move(row));
}

std::string TextTable::Text(const std::string& indent) const {
  std::vector<std::size_t> widths(alignment_.size());
  for (const auto& row : rows_) {
    for (std::size_t column = 0; column < widths.size(); ++column) {
      widths[column] = std::max(widths[column], row[column].size());
    }
  }
  std::string text;
  for (const auto& row : rows_) {
    std::string line = indent;
    for (std::size_t column = 0; column < widths.size(); ++column) {
      const std::string blanks(widths[column] - row[column].size(), ' ');
      line += column == 0 ? "" : "  ";
      line += alignment_[column] == 'r' ? blanks + row[column] : row[column] + blanks;
    }
    text += line.erase(line.find_last_not_of(' ') + 1) + "\n";
  }
  return text;
}

}  // namespace tarvo
