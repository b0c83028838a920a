#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

SPErr AcquireSuite(Core& core, const char* name, std::int32_t version, const void** suite) {
  if (name == nullptr || suite == nullptr) {
    return core.Refuse("AcquireSuite", "null");
  }
  const void* table = core.suites.Find(name, version);
  if (table == nullptr) {
    if (!core.suites.Knows(name, version)) {
      core.Refuse("AcquireSuite", "\"" + std::string(name) + "\" version " +
                                      std::to_string(version) + ", which this host does not have");
    }
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *suite = table;
  core.heldSuites[{name, version}].push_back(
      core.tracker.Issue(Kind::kSuite, std::string(name) + " " + std::to_string(version), nullptr));
  return PF_Err_NONE;
}

SPErr ReleaseSuite(Core& core, const char* name, std::int32_t version) {
  const auto held = name == nullptr ? core.heldSuites.end() : core.heldSuites.find({name, version});
  if (held == core.heldSuites.end() || held->second.empty()) {
    return core.Refuse("ReleaseSuite", "\"" + std::string(name == nullptr ? "" : name) +
                                           "\" version " + std::to_string(version) +
                                           ", which is not held; an acquired suite was expected");
  }
  core.tracker.Remove(Kind::kSuite, held->second.back(), "ReleaseSuite");
  held->second.pop_back();
  return PF_Err_NONE;
}

}  // namespace

void AddBasicSuite(Core& core) {
  core.suites.FillUnused(core.basicSuite, DescribeBasicSuiteSlots());
  core.basicSuite.AcquireSuite = Operation<"AcquireSuite", AcquireSuite>::Call;
  core.basicSuite.ReleaseSuite =
      Operation<"ReleaseSuite", ReleaseSuite, FailurePoint::kAfterEffect>::Call;
}

}  // namespace standin
