#pragma once

namespace tarvo {

/// Seconds that a command of the plug-in, or a check, may take if nothing else is asked for.
inline constexpr double kUsualTimeLimit = 120;

}  // namespace tarvo
