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

#include "standin/books.h"

namespace standin {

/// The host's suites by name and version, each a table of function pointers. A slot that this host
/// does not fill holds a function that reports itself, by table and slot, as a misuse.
class SuiteShelf {
 public:
  explicit SuiteShelf(Books& books) : books_(books) {}

  /// Puts a table on the shelf, all its slots reporting themselves; the caller fills those it has.
  template <typename Table>
  Table& Add(const std::string& name, std::int32_t version) {
    auto table = std::make_shared<Table>();
    FillUnused(*table, name + " " + std::to_string(version));
    suites_.push_back({name, version, table});
    return *table;
  }

  /// Makes every pointer-sized slot of a table report itself under that title.
  template <typename Table>
  void FillUnused(Table& table, const std::string& title) {
    static_assert(sizeof(Table) % sizeof(void*) == 0);
    const std::vector<void*> slots = UnusedSlots(title, sizeof(Table) / sizeof(void*));
    std::memcpy(static_cast<void*>(&table), slots.data(), sizeof(Table));
  }

  /// The table; null for one that is unknown or withheld.
  [[nodiscard]] const void* Find(std::string_view name, std::int32_t version) const;
  [[nodiscard]] bool Knows(std::string_view name, std::int32_t version) const;
  void Withhold(const std::string& name, std::int32_t version) {
    withheld_.insert({name, version});
  }
  void OfferAll() { withheld_.clear(); }

  /// Notes that an unused slot was called. For the slots themselves.
  void ReportUnused(std::size_t number);

 private:
  struct Suite {
    std::string name;
    std::int32_t version = 0;
    std::shared_ptr<void> table;
  };

  std::vector<void*> UnusedSlots(const std::string& title, std::size_t count);

  Books& books_;
  std::vector<Suite> suites_;
  std::vector<std::string> unused_;  ///< what the unused slots say of themselves
  std::set<std::pair<std::string, std::int32_t>> withheld_;
};

}  // namespace standin
