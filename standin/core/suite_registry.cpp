#include "standin/core/suite_registry.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "standin/core/core.h"

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

std::vector<void*> SuiteRegistry::UnusedSlots(const std::vector<std::string>& descriptions,
                                              std::size_t count) {
  if (descriptions.size() != count) {
    throw std::logic_error("a table of " + std::to_string(count) +
                           " slots is described as one of " + std::to_string(descriptions.size()));
  }
  std::vector<void*> slots;
  for (const std::string& description : descriptions) {
    slots.push_back(reinterpret_cast<void*>(kPool.at(unused_.size())));
    unused_.push_back(description);
  }
  return slots;
}

void SuiteRegistry::ReportUnused(std::size_t number) {
  tracker_.ReportViolation(unused_.at(number) + " was called; this host has nothing there");
}

const SuiteRegistry::Suite* SuiteRegistry::Search(std::string_view name,
                                                  std::int32_t version) const {
  const auto found = std::find_if(suites_.begin(), suites_.end(), [&](const Suite& suite) {
    return suite.offered.name == name && suite.offered.version == version;
  });
  return found == suites_.end() ? nullptr : &*found;
}

const void* SuiteRegistry::Find(std::string_view name, std::int32_t version) const {
  const Suite* suite = Search(name, version);
  const bool hidden = hidden_.count({std::string(name), version}) != 0;
  return suite == nullptr || hidden ? nullptr : suite->table.get();
}

bool SuiteRegistry::Knows(std::string_view name, std::int32_t version) const {
  return Search(name, version) != nullptr;
}

std::vector<SuiteDescription> SuiteRegistry::List() const {
  std::vector<SuiteDescription> offered;
  for (const Suite& suite : suites_) {
    offered.push_back(suite.offered);
  }
  return offered;
}

}  // namespace standin
