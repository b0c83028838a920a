#include "plugin/host/suite_handler.h"

#include "plugin/host/error_chain.h"

namespace plugin {

SuiteHandler::SuiteHandler(SPBasicSuite* basicSuite) : basicSuite_(basicSuite) {
  if (basicSuite_ == nullptr) {
    throw PF_Err{PF_Err_BAD_CALLBACK_PARAM};
  }
}

SuiteHandler::~SuiteHandler() {
  while (heldCount_ > 0) {
    const Holding& latest = held_[--heldCount_];
    // One by one: a host that throws at one keeps that suite, and the others are still released.
    IgnoreErrors([&] { basicSuite_->ReleaseSuite(latest.name, latest.version); });
  }
}

const void* SuiteHandler::Acquired(std::size_t place, const char* name, A_long version) {
  if (suites_[place] == nullptr) {
    const void* suite = nullptr;
    if (basicSuite_->AcquireSuite(name, version, &suite) != 0 || suite == nullptr) {
      throw PF_Err{PF_Err_BAD_CALLBACK_PARAM};
    }
    suites_[place] = suite;
    held_[heldCount_++] = {name, version};
  }
  return suites_[place];
}

}  // namespace plugin
