#pragma once

#include <string>
#include <vector>

namespace tarvo {

/// A number with so many digits after the point.
std::string Fixed(double number, int digits);
/// The shortest text that reads back as this number.
std::string Shortest(double number);

/// Rows of text in aligned columns.
class TextTable {
 public:
  /// A letter for each column: 'l' for text to the left, 'r' for text to the right.
  explicit TextTable(std::string alignment) : alignment_(std::move(alignment)) {}

  /// Control characters in a cell are escaped. REQUIRES: a cell for each column.
  void Add(std::vector<std::string> row);
  /// The lines, each begun with `indent`, without blanks at their ends.
  [[nodiscard]] std::string Text(const std::string& indent = "") const;

 private:
  std::string alignment_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace tarvo
