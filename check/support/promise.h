#pragma once

#include <string>

#include <gtest/gtest.h>

/// \file
/// A check is a GoogleTest case with a promise: one sentence that says what every sound build of
/// the plug-in does. It stands in front of the case, as the macro's last argument.

namespace check {

/// Keeps a case's promise. Of static lifetime.
struct Promise {
  Promise(const std::string& suite, const std::string& name, const std::string& text);
};

/// The promise of a case, of which GoogleTest may have made several ("Suite.Name/Value"); empty if
/// it has none.
std::string PromiseOf(const std::string& check);

}  // namespace check

#define CHECK_PROMISE(suite, name, text) \
  const check::Promise kPromiseOf##suite##name(#suite, #name, text);

/// As TEST_F, TEST_P and TEST, and the promise.
#define CHECK_F(fixture, name, promise) \
  CHECK_PROMISE(fixture, name, promise) \
  TEST_F(fixture, name)
#define CHECK_P(fixture, name, promise) \
  CHECK_PROMISE(fixture, name, promise) \
  TEST_P(fixture, name)
#define CHECK(suite, name, promise)   \
  CHECK_PROMISE(suite, name, promise) \
  TEST(suite, name)
