// What the window systems of users' machines refuse and this one does not.

#include "check/support/host_test.h"
#include "platform/linux/window_system_faults.h"

namespace {

class FaultsTest : public check::HostTest {
 protected:
  void TearDown() override {
    gWindowSystemFaults = {};
    HostTest::TearDown();
  }
};

/// The host is told in words, nothing is lost (TearDown looks), and the next start goes well.
TEST_F(FaultsTest, AStartThatTheSystemRefusesIsToldAndTheNextOneWorks) {
  using Faults = WindowSystemFaults;
  for (const auto fault :
       {&Faults::classRefused, &Faults::windowRefused, &Faults::deviceContextRefused,
        &Faults::pixelFormatNotFound, &Faults::pixelFormatRefused, &Faults::contextRefused}) {
    standin::Host& host = MakeHost();  // has a window of its own by now
    gWindowSystemFaults.*fault = true;
    const standin::CommandResult result = host.GlobalSetup();
    gWindowSystemFaults = {};
    EXPECT_EQ(result.code, PF_Err_INTERNAL_STRUCT_DAMAGED);
    EXPECT_EQ(result.message, "OS specific calls failed!");
    EndHost();
    StartHost();
    EndHost();
  }
}

}  // namespace
