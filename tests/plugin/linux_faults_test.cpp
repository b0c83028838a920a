// What the window systems of users' machines refuse and this one does not.

#include "platform/linux/window_system_faults.h"
#include "tests/plugin/plugin_fixture.h"

namespace {

class FaultsTest : public PluginTest {
 protected:
  void TearDown() override {
    gWindowSystemFaults = {};
    PluginTest::TearDown();
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
    TearDown();
    StartHost();
    TearDown();
  }
}

}  // namespace
