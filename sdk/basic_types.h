#pragma once

#include <cstdint>

#include "sdk/layout.h"

/// \file
/// Scalar types and small records of the host's interface. The host is a 64-bit Windows program:
/// its `long` has 32 bits, records have natural alignment, and there is one calling convention.

using A_long = std::int32_t;
using A_u_long = std::uint32_t;
using A_short = std::int16_t;
using A_u_short = std::uint16_t;
using A_char = char;
using A_u_char = std::uint8_t;
using A_Boolean = std::uint8_t;
using A_FpLong = double;
using A_FpShort = float;
using A_Fixed = A_long;  ///< 16.16
using A_HandleSize = std::uint64_t;

/// Result of an operation: 0 or one of the host's error codes.
using A_Err = A_long;
using PF_Err = A_long;

inline constexpr A_Err A_Err_NONE = 0;
inline constexpr PF_Err PF_Err_NONE = 0;
inline constexpr PF_Err PF_Err_OUT_OF_MEMORY = 4;
inline constexpr PF_Err PF_Err_INTERNAL_STRUCT_DAMAGED = 512;
inline constexpr PF_Err PF_Err_INVALID_INDEX = 513;
inline constexpr PF_Err PF_Err_UNRECOGNIZED_PARAM_TYPE = 514;
inline constexpr PF_Err PF_Err_INVALID_CALLBACK = 515;
inline constexpr PF_Err PF_Err_BAD_CALLBACK_PARAM = 516;
inline constexpr PF_Err PF_Interrupt_CANCEL = 517;

/// A moment: `value` / `scale` seconds.
struct A_Time {
  A_long value;
  A_u_long scale;
};
SDK_SIZE(A_Time, 8);

/// A rectangle in pixels; right and bottom lie outside it.
struct A_LRect {
  A_long left;
  A_long top;
  A_long right;
  A_long bottom;
};
SDK_SIZE(A_LRect, 16);
