#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "standin/core/object_tracker.h"
#include "standin/core/published_operations.h"

namespace standin {

/// A suite that a host has.
struct SuiteDescription {
  std::string name;
  std::int32_t version = 0;
  std::size_t slots = 0;

  bool operator==(const SuiteDescription&) const = default;
};

/// The host's suites by name and version, each a table of function pointers. A slot that this host
/// does not fill holds a function that reports itself as a violation, by table, slot and the
/// published name of the operation.
class SuiteRegistry {
 public:
  explicit SuiteRegistry(ObjectTracker& tracker) : tracker_(tracker) {}

  /// Puts a table on the shelf, all its slots reporting themselves; the caller fills those it has.
  template <typename Table>
  Table& Add(const std::string& name, std::int32_t version) {
    auto table = std::make_shared<Table>();
    constexpr std::size_t kSlots = sizeof(Table) / sizeof(void*);
    FillUnused(*table, DescribeSuiteSlots(name, version, kSlots));
    suites_.push_back({{name, version, kSlots}, table});
    return *table;
  }

  /// Makes every pointer-sized slot of a table report itself by its description.
  template <typename Table>
  void FillUnused(Table& table, const std::vector<std::string>& descriptions) {
    static_assert(sizeof(Table) % sizeof(void*) == 0);
    const std::vector<void*> slots = UnusedSlots(descriptions, sizeof(Table) / sizeof(void*));
    std::memcpy(static_cast<void*>(&table), slots.data(), sizeof(Table));
  }

  /// The table; null for one that is unknown or hidden.
  [[nodiscard]] const void* Find(std::string_view name, std::int32_t version) const;
  [[nodiscard]] bool Knows(std::string_view name, std::int32_t version) const;
  void Hide(const std::string& name, std::int32_t version) { hidden_.insert({name, version}); }
  void ShowAll() { hidden_.clear(); }
  /// All suites, hidden ones too.
  [[nodiscard]] std::vector<SuiteDescription> List() const;

  /// Notes that an unused slot was called. For the slots themselves.
  void ReportUnused(std::size_t number);

 private:
  struct Suite {
    SuiteDescription offered;
    std::shared_ptr<void> table;
  };

  /// REQUIRES: as many descriptions as slots.
  std::vector<void*> UnusedSlots(const std::vector<std::string>& descriptions, std::size_t count);
  [[nodiscard]] const Suite* Search(std::string_view name, std::int32_t version) const;

  ObjectTracker& tracker_;
  std::vector<Suite> suites_;
  std::vector<std::string> unused_;  ///< what the unused slots say of themselves
  std::set<std::pair<std::string, std::int32_t>> hidden_;
};

}  // namespace standin
