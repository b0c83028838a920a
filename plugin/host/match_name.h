#pragma once

#include <array>
#include <string_view>

#include "plugin/host/text_field.h"
#include "sdk/aegp.h"

namespace plugin {

/// This effect's own match name, under which hosts register it. companion.h documents both names
/// for companions.
inline constexpr const char* kOwnMatchName = "QEZ_Tarvo_renderer";
/// The match name of the companion effect, one instance of which represents one bone.
inline constexpr const char* kCompanionMatchName = "QEZ_Tarvo";

/// Room for a match name that the host writes, zeroed so that an unwritten one equals nothing.
class MatchName {
 public:
  A_char* Buffer() { return text_.data(); }

  /// True iff the host wrote exactly `name`, byte for byte.
  [[nodiscard]] bool Is(std::string_view name) const {
    return name == TextIn(text_.data(), text_.size());
  }

 private:
  std::array<A_char, kMatchNameBytes> text_{};
};

}  // namespace plugin
