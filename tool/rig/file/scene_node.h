#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "base/files/input_error.h"
#include "base/files/json.h"
#include "base/files/nearest_word.h"

namespace tarvo {

/// No number of a scene file lies farther from 0: sums and products of some of them stay finite.
inline constexpr double kGreatestNumber = 1e9;

/// The numbers that a field takes, both ends included.
struct Range {
  double least = std::numeric_limits<double>::lowest();
  double most = std::numeric_limits<double>::max();
};

/// One value of a scene file with the path to it. Reading a value that is not what was asked for
/// leaves a fault "PATH: WHAT expected, WHAT given" and gives a harmless stand-in, so that reading
/// goes on and finds all the other faults. Valid as long as the file's Json is.
class SceneNode {
 public:
  struct Member;

  SceneNode(const Json& value, std::string path, SceneFaults& faults)
      : value_(&value), path_(std::move(path)), faults_(&faults) {}

  /// The same value, whose faults go elsewhere.
  [[nodiscard]] SceneNode FaultsTo(SceneFaults& faults) const { return {*value_, path_, faults}; }

  [[nodiscard]] bool IsNumber() const { return value_->is_number(); }
  [[nodiscard]] bool IsText() const { return value_->is_string(); }
  [[nodiscard]] bool IsList() const { return value_->is_array(); }
  [[nodiscard]] bool IsObject() const { return value_->is_object(); }

  [[nodiscard]] double Number(Range range = {}) const;
  [[nodiscard]] double PositiveNumber() const;
  /// None when it is no whole number of this range.
  [[nodiscard]] std::optional<int> Integer(int least, int most) const;
  [[nodiscard]] bool Flag() const;
  /// At least one byte long, at most `longest`.
  [[nodiscard]] std::string Text(std::size_t longest = std::string::npos) const;
  /// The items of a list; none when it is no list.
  [[nodiscard]] std::vector<SceneNode> Items() const;
  /// The items of a list that must have `count` of them; none when it has not. `what` names the
  /// list in the fault: "4 points".
  [[nodiscard]] std::vector<SceneNode> Items(std::size_t count, std::string_view what) const;

  /// The members of an object in the order of the file; none when it is no object.
  [[nodiscard]] std::vector<Member> Members() const;
  /// Keys of an object other than these are faults, and so is anything but an object.
  void AllowKeys(const std::vector<std::string>& known) const;
  /// A member of an object, if there is one.
  [[nodiscard]] std::optional<SceneNode> Find(const std::string& key) const;
  /// A member that must be there. `what` names it in the fault: "list of points".
  [[nodiscard]] std::optional<SceneNode> Need(const std::string& key, std::string_view what) const;
  [[nodiscard]] double NumberOr(const std::string& key, Range range, double otherwise) const;
  [[nodiscard]] bool FlagOr(const std::string& key, bool otherwise) const;

  /// Faults so far, of the whole file.
  [[nodiscard]] std::size_t FaultCount() const { return faults_->Count(); }
  /// `, the nearest is "…"`, to follow a fault about a word; empty once faults are only counted.
  [[nodiscard]] std::string Hint(std::string_view word,
                                 const std::vector<std::string>& candidates) const {
    return faults_->IsFull() ? "" : NearestHint(word, candidates);
  }
  /// Leaves the fault "PATH: `what` expected, … given".
  void Expected(std::string_view what) const;
  /// Leaves the fault "PATH: `message`".
  void Fault(std::string_view message) const { faults_->Add(path_, message); }

 private:
  /// The value if it is a number of this range; else none, after a fault that says `kind` and
  /// range.
  [[nodiscard]] std::optional<double> NumberOf(std::string_view kind, Range range) const;

  const Json* value_;
  std::string path_;
  SceneFaults* faults_;
};

struct SceneNode::Member {
  std::string key;
  SceneNode value;
};

}  // namespace tarvo
