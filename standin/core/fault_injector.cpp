#include "standin/core/fault_injector.h"

#include <utility>

#include "standin/core/crash_record.h"

namespace standin {

bool FaultInjector::Plan::Fires() {
  if (remaining > 1) {
    --remaining;
    return false;
  }
  const bool fires = remaining == 1;
  if (!andLater) {
    remaining = 0;
  }
  return fires;
}

void FaultInjector::FailNth(std::uint64_t n, Failure failure) {
  anyOperation_ = Plan{n, failure, false};
  followUp_.reset();
}

void FaultInjector::FailFrom(std::uint64_t n, Failure failure) {
  anyOperation_ = Plan{n, failure, true};
  followUp_.reset();
}

void FaultInjector::FailPair(std::uint64_t n, Failure failure, Failure then) {
  FailNth(n, failure);
  followUp_ = then;
}

void FaultInjector::FailOperation(const std::string& operation, std::uint64_t k, Failure failure,
                                  bool andLater) {
  byOperation_[operation] = Plan{k, failure, andLater};
}

void FaultInjector::FailNothing() {
  anyOperation_.reset();
  followUp_.reset();
  disposalFailure_.reset();
  byOperation_.clear();
}

std::uint64_t FaultInjector::Calls(const std::string& operation) const {
  const auto tally = tallies_.find(operation);
  return tally == tallies_.end() ? 0 : tally->second.calls;
}

std::uint64_t FaultInjector::Injected(const std::string& operation) const {
  const auto tally = tallies_.find(operation);
  return tally == tallies_.end() ? 0 : tally->second.injected;
}

std::optional<Failure> FaultInjector::Enter(std::string_view operation, FailurePoint point) {
  NoteHostCall(operation);
  ++calls_;
  auto tally = tallies_.find(operation);
  if (tally == tallies_.end()) {
    tally = tallies_.emplace(std::string(operation), Tally{}).first;
  }
  ++tally->second.calls;
  const bool throwsOnly = point == FailurePoint::kThrowOnly;
  if (!throwsOnly) {
    ++failableCalls_;
  }
  std::optional<Failure> failure = throwsOnly ? DueByName(operation) : Due(operation, point);
  if (throwsOnly && failure && !failure->throws) {
    failure.reset();
  }
  if (failure) {
    ++injected_;
    ++tally->second.injected;
  }
  return failure;
}

std::optional<Failure> FaultInjector::Due(std::string_view operation, FailurePoint point) {
  std::optional<Failure> due;
  if (point == FailurePoint::kAfterEffect && operation != "ReleaseSuite") {
    due = std::exchange(disposalFailure_, std::nullopt);
  }
  if (anyOperation_ && anyOperation_->Fires()) {
    due = anyOperation_->failure;
    disposalFailure_ = std::exchange(followUp_, std::nullopt);
  }
  const std::optional<Failure> named = DueByName(operation);
  return named ? named : due;
}

std::optional<Failure> FaultInjector::DueByName(std::string_view operation) {
  const auto plan = byOperation_.find(operation);
  return plan != byOperation_.end() && plan->second.Fires() ? std::optional(plan->second.failure)
                                                            : std::nullopt;
}

void FaultInjector::Leave(CallRecord record) {
  record.command = command_;
  if (trace_) {
    trace_("  " + record.operation + "(" + record.arguments + ")" +
           (record.result.empty() ? "" : " = " + record.result) +
           (record.injected ? "  [injected failure]" : ""));
  }
  if (keepLog_ && log_.size() < kLogLimit) {
    log_.push_back(std::move(record));
  }
}

void FaultInjector::Note(std::string_view line) const {
  if (trace_) {
    trace_(line);
  }
}

}  // namespace standin
