#pragma once

#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "entry/entry_point.h"
#include "standin/host.h"

/// \file
/// The plug-in, linked in, on a stand-in host with one layer of 200 × 100 pixels.

class PluginTest : public ::testing::Test {
 protected:
  /// Makes the host. Does not send anything yet.
  standin::Host& MakeHost(const standin::HostOptions& options = {}) {
    host_ = std::make_unique<standin::Host>(EntryPointFunc, options);
    layer_ = &host_->project.AddComposition("Comp").AddLayer("Layer", 200, 100);
    return *host_;
  }

  /// Makes the host and sets the plug-in up.
  standin::Host& StartHost(const standin::HostOptions& options = {}) {
    MakeHost(options);
    EXPECT_EQ(host_->StartUp().code, PF_Err_NONE);
    return *host_;
  }

  standin::Layer& TheLayer() { return *layer_; }

  /// Whatever a test did, the plug-in must leave nothing behind.
  void TearDown() override {
    if (host_ == nullptr) return;
    host_->gate.FailNothing();
    host_->OfferAllSuites();
    host_->Close();
    EXPECT_EQ(host_->books.FirstMisuse(), "");
    EXPECT_TRUE(host_->books.Balanced());
    host_.reset();
  }

 private:
  std::unique_ptr<standin::Host> host_;
  standin::Layer* layer_ = nullptr;
};
