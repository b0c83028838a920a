#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace standin {

/// Everything that is wrong with one scene file, a line each: "wave.json: bones[2].image: …".
class SceneFaults {
 public:
  /// `fileName` stands at the start of every line.
  explicit SceneFaults(std::string fileName) : fileName_(std::move(fileName)) {}

  /// `place` is a path to a field ("bones[2].image"), another place, or empty for the whole file.
  void Add(std::string_view place, std::string_view message);

  [[nodiscard]] bool Empty() const { return lines_.empty(); }
  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::string fileName_;
  std::vector<std::string> lines_;
};

/// What the user gave cannot be used: a scene, a setting, an option. All the lines that say why.
class InputError : public std::runtime_error {
 public:
  explicit InputError(std::vector<std::string> faultLines);

  [[nodiscard]] const std::vector<std::string>& Lines() const { return lines_; }

 private:
  std::vector<std::string> lines_;
};

/// Path of a member: "bones[2].image", or "set[\"Hand start Z\"]" where the key is no plain word.
std::string PathTo(std::string_view object, std::string_view key);
/// Path of a list's item: "bones[2]".
std::string PathTo(std::string_view list, std::size_t index);

/// The candidate that the fewest single-character changes turn into `word`, the first of equals;
/// empty when there is none.
std::string Nearest(std::string_view word, const std::vector<std::string>& candidates);
/// `, the nearest is "…"`, to follow a complaint about a word; empty without candidates.
std::string NearestHint(std::string_view word, const std::vector<std::string>& candidates);

}  // namespace standin
