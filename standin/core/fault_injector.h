#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sdk/basic_types.h"

namespace standin {

/// The code of an injected failure where the test does not choose one: a code that neither the host
/// nor a plug-in returns of its own accord.
inline constexpr PF_Err kInjectedFailure = 7001;

/// How an operation fails on demand.
struct Failure {
  PF_Err code = kInjectedFailure;
  /// Throw `code` as an int out of the callback instead of returning it.
  bool throws = false;
};

/// When an operation fails on demand, relative to its effect.
enum class FailurePoint {
  kBeforeEffect,  ///< returns the code (or null, or 0) instead of its effect; outputs stay
                  ///< untouched
  kAfterEffect,   ///< takes effect and then returns the code: operations that release something
  kThrowOnly,  ///< takes effect and then throws, only if FailOperation asks for that operation to
               ///< throw
};

/// One host operation that the plug-in called.
struct CallRecord {
  std::string operation;
  std::string arguments;  ///< as text: numbers, "strings", host objects by their label
  std::string result;     ///< empty for an operation without result
  std::string command;    ///< the command (or "idle") under which it was called
  bool injected = false;  ///< it failed by injection
};

/// Counts all host operations, keeps a log of them, writes a trace, and makes the chosen ones fail.
/// Every operation of the host passes it (Enter, its effect, Leave), so that a test can fail each
/// call of a scenario in turn: run the scenario with FailNth(n) for n = 1, 2, … until Injected()
/// stays 0. A call costs a few map look-ups, and its text only while a log or a trace is kept.
///
/// Operations that release something (dispose_world, AEGP_DisposeEffect, AEGP_DisposeStream,
/// AEGP_DisposeStreamValue, ReleaseSuite, AEGP_EndUndoGroup, AEGP_EndQuietErrors) take effect even
/// when they fail: the plug-in could do no more, so nothing counts as leaked. Operations whose
/// result cannot report a failure (host_unlock_handle, host_dispose_handle, sprintf, strcpy) take
/// effect and then throw if FailOperation asks for it; the other plans skip them.
class FaultInjector {
 public:
  using Trace = std::function<void(std::string_view line)>;

  /// The `n`-th call from now (from 1) fails. Only operations that can fail are numbered, so that a
  /// loop over n ends at the first n at which nothing fired.
  void FailNth(std::uint64_t n, Failure failure = {});
  /// The `n`-th call from now (from 1) and every later one fails.
  void FailFrom(std::uint64_t n, Failure failure = {});
  /// The `n`-th call from now (from 1) fails, and then the next operation that releases something;
  /// not ReleaseSuite, whose result is ignored by convention.
  void FailPair(std::uint64_t n, Failure failure = {}, Failure then = {});
  /// The `k`-th call from now (from 1) of this operation fails; with `andLater` every later one
  /// too. Several operations can have such a plan at a time. Names are those of the host's
  /// interface, such as "new_world", "AEGP_GetEffectLayer", "AcquireSuite".
  void FailOperation(const std::string& operation, std::uint64_t k = 1, Failure failure = {},
                     bool andLater = false);
  /// Nothing fails from now on. Counts stay.
  void FailNothing();

  /// Host operations called so far.
  [[nodiscard]] std::uint64_t Calls() const { return calls_; }
  /// Those of them that could have failed by injection.
  [[nodiscard]] std::uint64_t FailableCalls() const { return failableCalls_; }
  /// Those of them that did.
  [[nodiscard]] std::uint64_t Injected() const { return injected_; }
  /// Calls of one operation so far.
  [[nodiscard]] std::uint64_t Calls(const std::string& operation) const;
  /// Injected failures of one operation so far.
  [[nodiscard]] std::uint64_t Injected(const std::string& operation) const;

  /// The log, oldest first; at most kLogLimit entries, later ones are dropped.
  [[nodiscard]] const std::vector<CallRecord>& Log() const { return log_; }
  void ClearLog() { log_.clear(); }
  /// Without a log and a trace no call is formatted, which keeps timings clean.
  void KeepLog(bool keep) { keepLog_ = keep; }
  /// Receives one line for every command and host operation; an empty function ends it.
  void TraceTo(Trace trace) { trace_ = std::move(trace); }
  /// As TraceTo, for every injector that is made from now on.
  static void TraceAll(Trace trace) { traceOfNew = std::move(trace); }

  static constexpr std::size_t kLogLimit = 200'000;

  // What follows is for the host's own callbacks.

  /// Enters an operation; the failure to inject, or none.
  std::optional<Failure> Enter(std::string_view operation, FailurePoint point);
  /// True iff a log or a trace uses what Leave receives.
  [[nodiscard]] bool IsRecording() const { return keepLog_ || trace_; }
  /// Notes how an operation went. REQUIRES: IsRecording.
  void Leave(CallRecord record);
  /// Writes one line into the trace, if there is one.
  void Note(std::string_view line) const;
  /// Names what is under way, for the log.
  void SetCommand(std::string command) { command_ = std::move(command); }

 private:
  /// Counts calls down to the one that is to fail.
  struct Plan {
    std::uint64_t remaining = 0;
    Failure failure;
    bool andLater = false;

    [[nodiscard]] bool Fires();
  };
  struct Tally {
    std::uint64_t calls = 0;
    std::uint64_t injected = 0;
  };

  /// The failure that the plans have for this call, each plan counting it.
  std::optional<Failure> Due(std::string_view operation, FailurePoint point);
  std::optional<Failure> DueByName(std::string_view operation);

  std::optional<Plan> anyOperation_;
  std::optional<Failure> followUp_;  ///< pending until anyOperation_ fires
  std::optional<Failure> disposalFailure_;
  std::map<std::string, Plan, std::less<>> byOperation_;
  std::map<std::string, Tally, std::less<>> tallies_;
  std::uint64_t calls_ = 0;
  std::uint64_t failableCalls_ = 0;
  std::uint64_t injected_ = 0;
  bool keepLog_ = true;
  std::vector<CallRecord> log_;
  std::string command_;
  static inline Trace traceOfNew;
  Trace trace_ = traceOfNew;
};

}  // namespace standin
