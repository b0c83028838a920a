#pragma once

#include <new>
#include <utility>

#include "sdk/basic_types.h"

namespace plugin {

/// The running result of a handler: it starts at 0, and the first failure stays.
class ErrorChain {
 public:
  [[nodiscard]] PF_Err Code() const { return code_; }
  [[nodiscard]] bool Ok() const { return code_ == PF_Err_NONE; }

  /// Runs `call` only while the code is 0; its result becomes the code.
  template <class Call>
  void Run(Call&& call) {
    if (Ok()) {
      code_ = std::forward<Call>(call)();
    }
  }

  /// A result from elsewhere, which counts only if the code was still 0.
  void Note(PF_Err result) {
    if (Ok()) {
      code_ = result;
    }
  }

  /// Replaces whatever was there.
  void Replace(PF_Err result) { code_ = result; }

 private:
  PF_Err code_ = PF_Err_NONE;
};

/// Runs `body` and returns its result, or the host code that it threw. Other exceptions pass.
template <class Body>
PF_Err Guarded(Body&& body) {
  try {
    return std::forward<Body>(body)();
  } catch (const PF_Err thrown) {
    return thrown;
  }
}

/// The result code for an exception that is not one of the host's codes, for a handler of `...`:
/// memory that ran out is PF_Err_OUT_OF_MEMORY, everything else PF_Err_INTERNAL_STRUCT_DAMAGED.
inline PF_Err CodeOfCurrentException() noexcept {
  try {
    throw;
  } catch (const std::bad_alloc&) {
    return PF_Err_OUT_OF_MEMORY;
  } catch (...) {
    return PF_Err_INTERNAL_STRUCT_DAMAGED;
  }
}

/// Runs `body` and returns its result, or the code of what it threw.
template <class Body>
PF_Err CodeOf(Body&& body) noexcept {
  try {
    return std::forward<Body>(body)();
  } catch (const PF_Err thrown) {
    return thrown;
  } catch (...) {
    return CodeOfCurrentException();
  }
}

/// Runs `body`; what it throws is dropped.
template <class Body>
void IgnoreErrors(Body&& body) noexcept {
  try {
    std::forward<Body>(body)();
  } catch (...) {  // the host keeps what it does not take
  }
}

}  // namespace plugin
