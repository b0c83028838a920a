#include "standin/suites.h"

#include <algorithm>
#include <array>

#include "standin/core.h"

namespace standin {
namespace {

// Enough for all tables together; ReportUnused has a text for each one that is in use.
constexpr std::size_t kUnusedSlots = 768;

template <std::size_t kNumber>
PF_Err Unused() {
  if (Core* core = ActiveCore()) {
    core->suites.ReportUnused(kNumber);
  }
  return PF_Err_INVALID_CALLBACK;
}

template <std::size_t... kNumbers>
constexpr auto MakePool(std::index_sequence<kNumbers...> /*numbers*/) {
  return std::array<PF_Err (*)(), sizeof...(kNumbers)>{&Unused<kNumbers>...};
}

constexpr auto kPool = MakePool(std::make_index_sequence<kUnusedSlots>());

}  // namespace

std::vector<void*> SuiteShelf::UnusedSlots(const std::string& title, std::size_t count) {
  std::vector<void*> slots;
  for (std::size_t slot = 0; slot < count; ++slot) {
    slots.push_back(reinterpret_cast<void*>(kPool.at(unused_.size())));
    unused_.push_back("slot " + std::to_string(slot) + " of " + title);
  }
  return slots;
}

void SuiteShelf::ReportUnused(std::size_t number) {
  books_.Misuse(unused_.at(number) + " was called; this host has nothing there");
}

const void* SuiteShelf::Find(std::string_view name, std::int32_t version) const {
  if (withheld_.count({std::string(name), version}) != 0) {
    return nullptr;
  }
  for (const Suite& suite : suites_) {
    if (suite.name == name && suite.version == version) {
      return suite.table.get();
    }
  }
  return nullptr;
}

bool SuiteShelf::Knows(std::string_view name, std::int32_t version) const {
  return std::any_of(suites_.begin(), suites_.end(), [&](const Suite& suite) {
    return suite.name == name && suite.version == version;
  });
}

}  // namespace standin
