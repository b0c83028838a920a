#pragma once

#include <array>

#include "plugin/host/suite_table.h"
#include "sdk/basic_suite.h"

namespace plugin {

/// The host's suites for the length of a scope: each is acquired when first asked for, kept, and
/// released with the same name and version when the scope ends, the latest first.
///
/// REQUIRES: the basic suite outlives the handler. Not copyable; made on the stack of a handler.
class SuiteHandler {
 public:
  /// Throws PF_Err_BAD_CALLBACK_PARAM if there is no basic suite.
  explicit SuiteHandler(SPBasicSuite* basicSuite);
  ~SuiteHandler();
  SuiteHandler(const SuiteHandler&) = delete;
  SuiteHandler& operator=(const SuiteHandler&) = delete;

  /// The suite, acquired now if it is not yet held. Throws PF_Err_BAD_CALLBACK_PARAM if the host
  /// does not hand it out.
  template <class Suite>
  const Suite& Get() {
    constexpr std::size_t place = SuitePlace<Suite>();
    return *static_cast<const Suite*>(
        Acquired(place, std::get<place>(kSuiteTable).name, std::get<place>(kSuiteTable).version));
  }

 private:
  struct Holding {
    const char* name;
    A_long version;
  };

  const void* Acquired(std::size_t place, const char* name, A_long version);

  SPBasicSuite* basicSuite_;
  std::array<const void*, kSuiteCount> suites_{};
  std::array<Holding, kSuiteCount> held_{};  ///< in the order of acquisition
  std::size_t heldCount_ = 0;
};

}  // namespace plugin
