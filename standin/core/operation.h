#pragma once

#include <algorithm>
#include <cstddef>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

#include "standin/core/argument_formatter.h"
#include "standin/core/core.h"

namespace standin {

/// A text as a template argument.
template <std::size_t kSize>
struct FixedText {
  // NOLINTNEXTLINE(google-explicit-constructor): a literal is to convert.
  constexpr FixedText(const char (&literal)[kSize]) { std::copy_n(literal, kSize, text); }

  char text[kSize]{};
};

/// What an operation returns when it fails: the code, null, 0, or nothing.
template <typename Result>
Result FailedResult(PF_Err code) {
  if constexpr (std::is_same_v<Result, PF_Err>) {
    return code;
  } else if constexpr (!std::is_void_v<Result>) {
    return Result{};
  }
}

/// Executes an operation; exceptions of the host itself are recorded and never propagate.
template <typename Result, typename Body>
Result Guarded(Core& core, std::string_view name, Body body) {
  try {
    return body(core);
  } catch (const std::bad_alloc&) {
    core.tracker.NoteOutOfMemory();
    return FailedResult<Result>(PF_Err_OUT_OF_MEMORY);
  } catch (const std::exception& fault) {
    core.tracker.ReportViolation("fault of the host in " + std::string(name) + ": " + fault.what());
    return FailedResult<Result>(PF_Err_INTERNAL_STRUCT_DAMAGED);
  }
}

/// Throws the injected failure of a callback, after it was logged.
[[noreturn]] inline void Throw(const Failure& failure) { throw int{failure.code}; }

/// Executes one call under the fault injector: counts it, fails it if a plan says so, else executes
/// it, and writes log and trace. `say` formats the arguments.
template <typename Result, typename Body, typename Say>
Result CallOperation(std::string_view name, FailurePoint point, Body body, Say say) {
  Core* core = ActiveCore();
  if (core == nullptr) {
    return FailedResult<Result>(PF_Err_INVALID_CALLBACK);
  }
  const std::optional<Failure> failure = core->injector.Enter(name, point);
  const auto leave = [&](bool done, const std::string& result) {
    core->injector.Leave({std::string(name), say(ArgumentFormatter(core->tracker, done)), result,
                          "", failure.has_value()});
  };
  const bool works = !failure || point != FailurePoint::kBeforeEffect;
  if constexpr (std::is_void_v<Result>) {
    Guarded<void>(*core, name, body);
    if (core->injector.IsRecording()) {
      leave(true, "");
    }
    if (failure && failure->throws) {
      Throw(*failure);
    }
  } else {
    Result result = works ? Guarded<Result>(*core, name, body) : Result{};
    if (failure && point != FailurePoint::kThrowOnly) {
      result = FailedResult<Result>(failure->code);
    }
    const bool done = std::is_same_v<Result, PF_Err> ? result == Result{} : !failure;
    if (core->injector.IsRecording()) {
      leave(done, ArgumentFormatter(core->tracker, true)(result));
    }
    if (failure && failure->throws) {
      Throw(*failure);
    }
    return result;
  }
}

/// An operation of the host as the plug-in calls it, made of a name and a function that does the
/// work for the active host. `Operation<...>::Call` is the pointer for a suite's slot.
template <FixedText kName, auto kBody, FailurePoint kPoint = FailurePoint::kBeforeEffect>
struct Operation;

template <FixedText kName, typename Result, typename... Arguments,
          Result (*kBody)(Core&, Arguments...), FailurePoint kPoint>
struct Operation<kName, kBody, kPoint> {
  static Result Call(Arguments... arguments) {
    return CallOperation<Result>(
        kName.text, kPoint, [&](Core& core) { return kBody(core, arguments...); },
        [&](const ArgumentFormatter& words) {
          std::string text;
          ((text += (text.empty() ? "" : ", ") + words(arguments)), ...);
          return text;
        });
  }
};

}  // namespace standin
