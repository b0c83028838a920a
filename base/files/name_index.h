#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace tarvo {

/// Names in their order, found without a search through all of them.
class NameIndex {
 public:
  void Add(const std::string& name) {
    ++places_.try_emplace(name, Place{names_.size()}).first->second.count;
    names_.push_back(name);
  }

  [[nodiscard]] const std::vector<std::string>& Names() const { return names_; }
  /// How often a name was added.
  [[nodiscard]] std::size_t Count(const std::string& name) const {
    const auto found = places_.find(name);
    return found == places_.end() ? 0 : found->second.count;
  }
  /// The index of the first occurrence of a name.
  [[nodiscard]] std::optional<std::size_t> First(const std::string& name) const {
    const auto found = places_.find(name);
    return found == places_.end() ? std::nullopt : std::optional(found->second.first);
  }

 private:
  struct Place {
    std::size_t first = 0;
    std::size_t count = 0;
  };

  std::vector<std::string> names_;
  std::unordered_map<std::string, Place> places_;
};

}  // namespace tarvo
