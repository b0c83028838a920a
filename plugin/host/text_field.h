#pragma once

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "sdk/basic_types.h"

namespace plugin {

/// The text in a field of `size` bytes that the host wrote: up to the first zero, or all of it, for
/// hosts fill a field without terminating it.
inline std::string_view TextIn(const A_char* field, std::size_t size) {
  return {field, static_cast<std::size_t>(std::find(field, field + size, '\0') - field)};
}

}  // namespace plugin
