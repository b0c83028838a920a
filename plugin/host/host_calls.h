#pragma once

#include <type_traits>
#include <utility>

#include "plugin/host/error_chain.h"
#include "plugin/host/suite_handler.h"
#include "sdk/effect.h"

namespace plugin {

/// One handler's conversation with the host: suites for its scope and its running result.
///
/// An operation is a callback of the host's, or an operation of a suite named as a member of the
/// suite's record; then the suite is acquired only if the operation runs:
///
///     host.Run(&AEGP_PFInterfaceSuite1::AEGP_GetEffectLayer, in.effect_ref, &layer);
class HostCalls {
 public:
  /// Throws PF_Err_BAD_CALLBACK_PARAM if there is no basic suite.
  explicit HostCalls(SPBasicSuite* basicSuite) : suites_(basicSuite) {}

  SuiteHandler& Suites() { return suites_; }
  ErrorChain& Chain() { return chain_; }
  [[nodiscard]] PF_Err Code() const { return chain_.Code(); }
  [[nodiscard]] bool Ok() const { return chain_.Ok(); }

  /// Calls the operation, outside the chain.
  template <class Operation, class... Arguments>
  auto Call(Operation operation, Arguments&&... arguments) {
    if constexpr (std::is_member_object_pointer_v<Operation>) {
      return (SuiteOf(operation).*operation)(std::forward<Arguments>(arguments)...);
    } else {
      return operation(std::forward<Arguments>(arguments)...);
    }
  }

  /// Calls the operation only while the code is 0; its result becomes the code.
  template <class Operation, class... Arguments>
  void Run(Operation operation, Arguments&&... arguments) {
    chain_.Run([&] { return Call(operation, std::forward<Arguments>(arguments)...); });
  }

  /// Calls the operation whatever the code, outside the chain. Returns its result, or the code of
  /// what it throws. Never throws, so that it may run while another error is under way.
  template <class Operation, class... Arguments>
  [[nodiscard]] PF_Err Attempt(Operation operation, Arguments&&... arguments) noexcept {
    return CodeOf([&] { return Call(operation, std::forward<Arguments>(arguments)...); });
  }

  /// As Attempt; the result counts only if the code was still 0.
  template <class Operation, class... Arguments>
  void RunCleanup(Operation operation, Arguments&&... arguments) noexcept {
    chain_.Note(Attempt(operation, std::forward<Arguments>(arguments)...));
  }

  /// Acquires the suite of an operation ahead of its use. Throws like SuiteHandler::Get.
  template <class Suite, class Function>
  void Need(Function Suite::*) {
    suites_.Get<Suite>();
  }

 private:
  template <class Suite, class Function>
  const Suite& SuiteOf(Function Suite::*) {
    return suites_.Get<Suite>();
  }

  SuiteHandler suites_;
  ErrorChain chain_;
};

}  // namespace plugin
