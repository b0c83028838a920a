#include "plugin/entry/about.h"

#include "plugin/host/match_name.h"
#include "plugin/host/suite_handler.h"

namespace plugin {
namespace {

/// The text's own number, fixed: it tells users of the rigging tool which renderer they have.
/// Hosts go by another one (registration.h), and releases are counted by a third (CMakeLists.txt).
constexpr int kMajor = 1;
constexpr int kMinor = 0;
constexpr int kThird = 3;

}  // namespace

PF_Err About(PF_InData& in, PF_OutData& out) {
  SuiteHandler suites(in.pica_basicP);
  suites.Get<PF_ANSICallbacksSuite1>().sprintf(out.return_msg, "%s, v%d.%d.%d\r%s", kOwnMatchName,
                                               kMajor, kMinor, kThird, "IK & rigging.");
  return PF_Err_NONE;
}

}  // namespace plugin
