#pragma once

#include <memory>

#include <gtest/gtest.h>

#include "check/support/rig.h"
#include "standin/host/host.h"

namespace check {

/// A host with one layer of 200 × 100 pixels, which a case makes as it needs it. Whatever the case
/// did, the plug-in must leave nothing behind.
class HostTest : public ::testing::Test {
 protected:
  /// Makes the host. Does not send anything yet.
  standin::Host& MakeHost(const standin::HostOptions& options = {}) {
    host_ = std::make_unique<standin::Host>(PluginUnderCheck(), options);
    layer_ = &host_->project.AddComposition("Comp").AddLayer("Layer", 200, 100);
    return *host_;
  }

  /// Makes the host and sets the plug-in up.
  standin::Host& StartHost(const standin::HostOptions& options = {}) {
    MakeHost(options);
    EXPECT_EQ(host_->StartUp().code, PF_Err_NONE);
    return *host_;
  }

  standin::Host& TheHost() { return *host_; }
  standin::Layer& TheLayer() { return *layer_; }

  /// Ends the host, for a case that makes several.
  void EndHost() {
    if (host_ != nullptr) {
      EndHostInOrder(*host_);
    }
    host_.reset();
  }

  void TearDown() override { EndHost(); }

 private:
  std::unique_ptr<standin::Host> host_;
  standin::Layer* layer_ = nullptr;
};

}  // namespace check
