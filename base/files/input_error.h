#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tarvo {

/// Most lines that are said about one input; how many more there are is said in one more line.
inline constexpr std::size_t kMostFaultLines = 100;

/// "and 7 more": the line that follows the last one kept.
std::string MoreLines(std::size_t count);

/// Lines about what is wrong: the first of them, and the number of the others. Memory and time stay
/// small however many are added.
class FaultLines {
 public:
  /// Control characters in it are escaped: it is one line.
  void Add(std::string_view line);

  [[nodiscard]] std::size_t Count() const { return count_; }
  /// True once no line is kept any more: it need not be put together.
  [[nodiscard]] bool IsFull() const { return count_ >= kMostFaultLines; }
  /// The lines kept, and the one that says how many more there are.
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::size_t count_ = 0;
  std::vector<std::string> lines_;
};

/// Everything that is wrong with one scene file, a line each: "wave.json: bones[2].image: …".
class SceneFaults {
 public:
  /// Every line starts with `fileName`.
  explicit SceneFaults(std::string fileName) : fileName_(std::move(fileName)) {}

  /// `place` is a path to a field ("bones[2].image"), another place, or empty for the whole file.
  void Add(std::string_view place, std::string_view message);

  [[nodiscard]] bool Empty() const { return lines_.Count() == 0; }
  [[nodiscard]] std::size_t Count() const { return lines_.Count(); }
  /// True once further lines are only counted.
  [[nodiscard]] bool IsFull() const { return lines_.IsFull(); }
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_.Lines(); }

 private:
  std::string fileName_;
  FaultLines lines_;
};

/// What the user gave cannot be used: a scene, a setting, an option. All the lines that say why.
class InputError : public std::runtime_error {
 public:
  explicit InputError(std::vector<std::string> faultLines);

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

/// Path of a member, whose key is cut where it is long: "bones[2].image", or "set[\"Hand start
/// Z\"]" where the key is no plain word.
std::string PathTo(std::string_view object, std::string_view key);
/// Path of a list's item: "bones[2]".
std::string PathTo(std::string_view list, std::size_t index);

}  // namespace tarvo
