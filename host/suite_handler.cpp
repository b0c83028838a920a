#include "host/suite_handler.h"

namespace tarvo {

SuiteHandler::SuiteHandler(SPBasicSuite* basicSuite) : basicSuite_(basicSuite) {
  if (basicSuite_ == nullptr) throw PF_Err{PF_Err_BAD_CALLBACK_PARAM};
}

SuiteHandler::~SuiteHandler() {
  while (heldCount_ > 0) {
    const Holding& latest = held_[--heldCount_];
    try {
      basicSuite_->ReleaseSuite(latest.name, latest.version);
    } catch (...) {  // a host that throws here keeps its suite; the others are still released
    }
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

}  // namespace tarvo
