#pragma once

#include <string>

#include <gtest/gtest.h>

/// \file
/// A check is a GoogleTest case with a requirement: one sentence that says what every conformant
/// build of the plug-in does. It is the macro's last argument, in front of the case.

namespace check {

/// Keeps a case's requirement. Of static lifetime.
struct Requirement {
  Requirement(const std::string& suite, const std::string& name, const std::string& text);
};

/// The requirement of a case, of which GoogleTest may have made several ("Suite.Name/Value"); empty
/// if it has none.
std::string RequirementOf(const std::string& check);

}  // namespace check

#define CHECK_REQUIREMENT(suite, name, text) \
  const check::Requirement kRequirementOf##suite##name(#suite, #name, text);

/// As TEST_F, TEST_P and TEST, and the requirement.
#define CHECK_F(fixture, name, requirement)     \
  CHECK_REQUIREMENT(fixture, name, requirement) \
  TEST_F(fixture, name)
#define CHECK_P(fixture, name, requirement)     \
  CHECK_REQUIREMENT(fixture, name, requirement) \
  TEST_P(fixture, name)
#define CHECK(suite, name, requirement)       \
  CHECK_REQUIREMENT(suite, name, requirement) \
  TEST(suite, name)
