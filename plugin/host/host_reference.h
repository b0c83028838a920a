#pragma once

#include "plugin/host/host_calls.h"
#include "plugin/host/process.h"
#include "sdk/aegp_suites.h"

namespace plugin {

/// A reference that the host hands out and that must be disposed of. `Dispose` is the suite
/// operation that does so; it runs when the scope ends, whatever the result, and its error counts
/// only if there was none.
template <auto Dispose>
class HostReference {
  template <class Suite, class Reference>
  static Reference TakenBy(A_Err (*Suite::*)(Reference));
  using Reference = decltype(TakenBy(Dispose));

 public:
  explicit HostReference(HostCalls& host) : host_(host) {}
  ~HostReference() {
    if (reference_ != nullptr) {
      host_.RunCleanup(Dispose, reference_);
    }
  }
  HostReference(const HostReference&) = delete;
  HostReference& operator=(const HostReference&) = delete;

  /// Asks for the reference with `operation`, whose last argument is where it goes; chained. The
  /// suite that disposes of it is acquired first, so that what was obtained can always be disposed
  /// of.
  template <class Operation, class... Arguments>
  void Obtain(Operation operation, Arguments... arguments) {
    if (!host_.Ok()) {
      return;
    }
    host_.Need(Dispose);
    host_.Run(operation, arguments..., &reference_);
  }

  [[nodiscard]] Reference Get() const { return reference_; }
  explicit operator bool() const { return reference_ != nullptr; }

 private:
  HostCalls& host_;
  Reference reference_ = nullptr;
};

using EffectReference = HostReference<&AEGP_EffectSuite2::AEGP_DisposeEffect>;
using StreamReference = HostReference<&AEGP_StreamSuite4::AEGP_DisposeStream>;

/// The one-dimensional value of a stream at layer time 0, expressions applied: what sliders,
/// checkboxes and popups hold. Call order: Read? (Get | Set | Write)*.
class StreamValue {
 public:
  StreamValue(HostCalls& host, AEGP_StreamRefH stream) : host_(host), stream_(stream) {
    value_.streamH = stream;
  }
  ~StreamValue() {
    if (read_) {
      host_.RunCleanup(&AEGP_StreamSuite4::AEGP_DisposeStreamValue, &value_);
    }
  }
  StreamValue(const StreamValue&) = delete;
  StreamValue& operator=(const StreamValue&) = delete;

  /// Asks the host for the value; chained. It is then disposed of when the scope ends.
  void Read() {
    if (!host_.Ok()) {
      return;
    }
    const A_Time start{.value = 0, .scale = 1};
    host_.Run(&AEGP_StreamSuite4::AEGP_GetNewStreamValue, gPluginId, stream_,
              AEGP_LTimeMode_LayerTime, &start, A_Boolean{0}, &value_);
    read_ = host_.Ok();
  }

  [[nodiscard]] double Get() const { return value_.val.one_d; }
  void Set(double value) { value_.val.one_d = value; }

  /// Hands the value to the host; chained.
  void Write() { host_.Run(&AEGP_StreamSuite4::AEGP_SetStreamValue, gPluginId, stream_, &value_); }

 private:
  HostCalls& host_;
  AEGP_StreamRefH stream_;  ///< ours; the one in the value is the host's to write
  AEGP_StreamValue2 value_{};
  bool read_ = false;
};

}  // namespace plugin
