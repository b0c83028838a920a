#pragma once

namespace tarvo {

/// Makes the PNG decoder forget why it failed last on this thread: a failure without a reason
/// leaves that of an earlier one.
void ForgetDecoderFailure();

}  // namespace tarvo
