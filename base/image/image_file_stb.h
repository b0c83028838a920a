#pragma once

namespace tarvo {

/// Clears the PNG decoder's last failure on this thread: a failure without a reason
/// leaves that of an earlier one.
void ForgetDecoderFailure();

}  // namespace tarvo
