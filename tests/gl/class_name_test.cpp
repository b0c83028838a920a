#include "plugin/gl/class_name.h"

#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {
namespace {

std::string NameFor(std::uint32_t seed, std::int32_t length) {
  std::string buffer(static_cast<std::size_t>(length) + 2, '#');
  AESDK_OpenGL_SeedClassNames(seed);
  AESDK_OpenGL_MakeClassName(buffer.data(), length);
  return buffer;
}

TEST(ClassName, DependsOnTheSeedAlone) {
  using namespace std::string_literals;
  // The runtime's generator on Windows gives 41, 18467, 6334, 26500, 19169, 15724 for the seed 1;
  // modulo 62 that is 41, 53, 10, 26, 11, 38.
  EXPECT_EQ(NameFor(1, 6), "frAQBc\0#"s);
  EXPECT_EQ(NameFor(1, 0), "\0#"s);
  EXPECT_EQ(NameFor(59'999, 32), NameFor(59'999, 32));
  EXPECT_NE(NameFor(0, 32), NameFor(59'999, 32));
}

TEST(ClassName, LeavesTheRuntimesGeneratorAlone) {
  std::srand(7);
  const int undisturbed = std::rand();
  std::srand(7);
  NameFor(1, 32);
  EXPECT_EQ(std::rand(), undisturbed);
}

}  // namespace
}  // namespace AESDK_OpenGL
