#include "tool/rig/file/scene_node.h"

#include <algorithm>
#include <cmath>

#include "base/files/escaped_text.h"
#include "base/files/text_table.h"

namespace tarvo {
namespace {

/// A limit as a person writes it.
std::string Described(double limit) {
  return limit == std::floor(limit) ? std::to_string(std::llround(limit)) : Shortest(limit);
}

std::string Described(std::string_view kind, Range range) {
  const bool hasLeast = range.least > Range{}.least;
  const bool hasMost = range.most < Range{}.most;
  std::string words(kind);
  if (hasLeast && hasMost) {
    return words + " from " + Described(range.least) + " to " + Described(range.most);
  }
  return hasLeast ? words + " of at least " + Described(range.least) : words;
}

/// What a file holds, for "… given".
std::string Description(const Json& value) {
  constexpr std::size_t kLongestQuote = 40;
  if (value.is_object()) {
    return "object";
  }
  if (value.is_array()) {
    return "list of " + std::to_string(value.size());
  }
  if (value.is_string()) {
    return "text " + Shortened(value.dump(), kLongestQuote);
  }
  return (value.is_number() ? "number " : "") + value.dump();
}

}  // namespace

void SceneNode::Expected(std::string_view what) const {
  Fault(std::string(what) + " expected, " + Description(*value_) + " given");
}

std::optional<double> SceneNode::NumberOf(std::string_view kind, Range range) const {
  if (!value_->is_number()) {
    Expected(Described(kind, range));
    return std::nullopt;
  }
  const auto number = value_->get<double>();
  if (number < range.least || number > range.most) {
    Fault(Described(kind, range) + " expected, " + value_->dump() + " given");
    return std::nullopt;
  }
  if (std::abs(number) > kGreatestNumber) {
    Fault(Described(kind, {-kGreatestNumber, kGreatestNumber}) + " expected, " + value_->dump() +
          " given");
    return std::nullopt;
  }
  return number;
}

double SceneNode::Number(Range range) const { return NumberOf("number", range).value_or(0.0); }

double SceneNode::PositiveNumber() const {
  const auto number = NumberOf("number above 0", {});
  if (number && *number <= 0.0) {
    Fault("number above 0 expected, " + value_->dump() + " given");
    return 1.0;
  }
  return number.value_or(1.0);
}

std::optional<int> SceneNode::Integer(int least, int most) const {
  const Range range{static_cast<double>(least), static_cast<double>(most)};
  const auto number = NumberOf("whole number", range);
  if (number && *number != std::floor(*number)) {
    Fault(Described("whole number", range) + " expected, " + value_->dump() + " given");
    return std::nullopt;
  }
  return number ? std::optional(static_cast<int>(*number)) : std::nullopt;
}

bool SceneNode::Flag() const {
  if (!value_->is_boolean()) {
    Expected("true or false");
    return false;
  }
  return value_->get<bool>();
}

std::string SceneNode::Text(std::size_t longest) const {
  if (!value_->is_string()) {
    Expected("text");
    return {};
  }
  auto text = value_->get<std::string>();
  if (text.empty()) {
    Fault("text expected, empty text given");
  } else if (text.size() > longest) {
    Fault("text of at most " + std::to_string(longest) + " bytes expected, " +
          std::to_string(text.size()) + " given");
  }
  return text;
}

std::vector<SceneNode> SceneNode::Items() const {
  std::vector<SceneNode> items;
  if (!value_->is_array()) {
    Expected("list");
    return items;
  }
  for (std::size_t i = 0; i < value_->size(); ++i) {
    items.emplace_back((*value_)[i], PathTo(path_, i), *faults_);
  }
  return items;
}

std::vector<SceneNode> SceneNode::Items(std::size_t count, std::string_view what) const {
  if (!value_->is_array()) {
    Expected(what);
    return {};
  }
  if (value_->size() != count) {
    Fault(std::string(what) + " expected, " + std::to_string(value_->size()) + " given");
    return {};
  }
  return Items();
}

std::vector<SceneNode::Member> SceneNode::Members() const {
  std::vector<Member> members;
  if (!value_->is_object()) {
    Expected("object");
    return members;
  }
  for (const auto& member : value_->items()) {
    members.push_back(
        {member.key(), SceneNode(member.value(), PathTo(path_, member.key()), *faults_)});
  }
  return members;
}

void SceneNode::AllowKeys(const std::vector<std::string>& known) const {
  for (const Member& member : Members()) {
    if (std::ranges::find(known, member.key) == known.end()) {
      member.value.Fault("unknown key" + member.value.Hint(member.key, known));
    }
  }
}

std::optional<SceneNode> SceneNode::Find(const std::string& key) const {
  if (!value_->is_object() || !value_->contains(key)) {
    return std::nullopt;
  }
  return SceneNode((*value_)[key], PathTo(path_, key), *faults_);
}

std::optional<SceneNode> SceneNode::Need(const std::string& key, std::string_view what) const {
  auto member = Find(key);
  if (!member && value_->is_object()) {
    faults_->Add(PathTo(path_, key), std::string(what) + " expected, nothing given");
  }
  return member;
}

double SceneNode::NumberOr(const std::string& key, Range range, double otherwise) const {
  const auto member = Find(key);
  return member ? member->Number(range) : otherwise;
}

bool SceneNode::FlagOr(const std::string& key, bool otherwise) const {
  const auto member = Find(key);
  return member ? member->Flag() : otherwise;
}

}  // namespace tarvo
