#include "standin/core/gate.h"

#include <utility>

#include "standin/core/crash_record.h"

namespace standin {

bool Gate::Plan::Fires() {
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

void Gate::FailNth(std::uint64_t n, Failure failure) {
  anyOperation_ = Plan{n, failure, false};
  afterIt_.reset();
}

void Gate::FailFrom(std::uint64_t n, Failure failure) {
  anyOperation_ = Plan{n, failure, true};
  afterIt_.reset();
}

void Gate::FailPair(std::uint64_t n, Failure failure, Failure then) {
  FailNth(n, failure);
  afterIt_ = then;
}

void Gate::FailOperation(const std::string& operation, std::uint64_t k, Failure failure,
                         bool andLater) {
  byOperation_[operation] = Plan{k, failure, andLater};
}

void Gate::FailNothing() {
  anyOperation_.reset();
  afterIt_.reset();
  nextGivingBack_.reset();
  byOperation_.clear();
}

std::uint64_t Gate::Calls(const std::string& operation) const {
  const auto tally = tallies_.find(operation);
  return tally == tallies_.end() ? 0 : tally->second.calls;
}

std::uint64_t Gate::Injected(const std::string& operation) const {
  const auto tally = tallies_.find(operation);
  return tally == tallies_.end() ? 0 : tally->second.injected;
}

std::optional<Failure> Gate::Enter(std::string_view operation, Failing failing) {
  NoteHostCall(operation);
  ++calls_;
  auto tally = tallies_.find(operation);
  if (tally == tallies_.end()) {
    tally = tallies_.emplace(std::string(operation), Tally{}).first;
  }
  ++tally->second.calls;
  const bool throwsOnly = failing == Failing::kThrowsOnly;
  if (!throwsOnly) {
    ++failableCalls_;
  }
  std::optional<Failure> failure = throwsOnly ? DueByName(operation) : Due(operation, failing);
  if (throwsOnly && failure && !failure->throws) {
    failure.reset();
  }
  if (failure) {
    ++injected_;
    ++tally->second.injected;
  }
  return failure;
}

std::optional<Failure> Gate::Due(std::string_view operation, Failing failing) {
  std::optional<Failure> due;
  if (failing == Failing::kAfterwork && operation != "ReleaseSuite") {
    due = std::exchange(nextGivingBack_, std::nullopt);
  }
  if (anyOperation_ && anyOperation_->Fires()) {
    due = anyOperation_->failure;
    nextGivingBack_ = std::exchange(afterIt_, std::nullopt);
  }
  const std::optional<Failure> named = DueByName(operation);
  return named ? named : due;
}

std::optional<Failure> Gate::DueByName(std::string_view operation) {
  const auto plan = byOperation_.find(operation);
  return plan != byOperation_.end() && plan->second.Fires() ? std::optional(plan->second.failure)
                                                            : std::nullopt;
}

void Gate::Leave(CallRecord record) {
  record.command = command_;
  if (trace_) {
    trace_("  " + record.operation + "(" + record.arguments + ")" +
           (record.result.empty() ? "" : " = " + record.result) +
           (record.injected ? "  [told to fail]" : ""));
  }
  if (keepLog_ && log_.size() < kLogLimit) {
    log_.push_back(std::move(record));
  }
}

void Gate::Note(std::string_view line) const {
  if (trace_) {
    trace_(line);
  }
}

}  // namespace standin
