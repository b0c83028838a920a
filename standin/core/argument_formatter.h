#pragma once

#include <string>
#include <type_traits>

#include "sdk/aegp.h"
#include "sdk/effect.h"
#include "standin/core/object_tracker.h"

namespace standin {

/// Formats the arguments and results of host operations for log and trace. The target of an output
/// pointer is formatted only when the operation has written it (`done`).
class ArgumentFormatter {
 public:
  ArgumentFormatter(const ObjectTracker& tracker, bool done) : tracker_(tracker), done_(done) {}

  [[nodiscard]] std::string operator()(const A_char* text) const;
  [[nodiscard]] std::string operator()(A_char* text) const;
  [[nodiscard]] std::string operator()(const PF_EffectWorld* world) const;
  [[nodiscard]] std::string operator()(const PF_Rect* area) const;
  [[nodiscard]] std::string operator()(const PF_Pixel* colour) const;
  [[nodiscard]] std::string operator()(const A_Time* time) const;
  [[nodiscard]] std::string operator()(const AEGP_StreamValue2* value) const;
  [[nodiscard]] std::string operator()(const PF_ParamDef* definition) const;
  [[nodiscard]] std::string operator()(const AEGP_ErrReportState* state) const;
  [[nodiscard]] std::string operator()(double value) const;

  template <typename Value>
  [[nodiscard]] std::string operator()(Value value) const {
    if constexpr (std::is_enum_v<Value> || std::is_integral_v<Value>) {
      return std::to_string(value);
    } else if constexpr (std::is_function_v<std::remove_pointer_t<Value>>) {
      return value == nullptr ? "null" : "a function";
    } else if constexpr (IsChangeableRecord<Value>) {
      return (*this)(static_cast<const std::remove_pointer_t<Value>*>(value));
    } else if constexpr (IsOutput<Value>) {
      return value == nullptr ? "null" : done_ ? (*this)(*value) : "out";
    } else {
      return tracker_.Describe(static_cast<const void*>(value));
    }
  }

 private:
  /// Records are formatted by their contents, const or not.
  template <typename Value>
  static constexpr bool IsChangeableRecord =
      std::is_pointer_v<Value>&& std::is_class_v<std::remove_pointer_t<Value>> &&
      !std::is_const_v<std::remove_pointer_t<Value>>;
  /// A pointer to a number or to another pointer is where an operation writes; a handle is not.
  template <typename Value>
  static constexpr bool IsOutput = std::is_pointer_v<Value> && !std::is_same_v<Value, PF_Handle> &&
                                   (std::is_arithmetic_v<std::remove_pointer_t<Value>> ||
                                    std::is_pointer_v<std::remove_pointer_t<Value>>);

  const ObjectTracker& tracker_;
  bool done_;
};

}  // namespace standin
