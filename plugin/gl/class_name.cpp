#include "plugin/gl/class_name.h"

#include <random>
#include <string_view>

#include "plugin/gl/framework.h"

namespace AESDK_OpenGL {

namespace {

constexpr std::string_view kAlphabet =
    "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz";

// The generator behind `rand` of the C runtime on Windows, of which bits 16 to 30 are the value.
// Our own copy: seeding the runtime's would disturb other users of it in the process.
using Generator = std::linear_congruential_engine<std::uint32_t, 214013, 2531011, 0>;

Generator& TheGenerator() {
  static Generator generator;
  return generator;
}

std::uint32_t NextRandom() { return TheGenerator()() >> 16 & 0x7FFF; }

}  // namespace

void AESDK_OpenGL_SeedClassNames(std::uint32_t seed) { TheGenerator().seed(seed); }

void AESDK_OpenGL_MakeClassName(char* buffer, std::int32_t length) {
  if (length < 0) {
    return;
  }
  for (std::int32_t position = 0; position < length; ++position) {
    buffer[position] = kAlphabet[NextRandom() % kAlphabet.size()];
  }
  buffer[length] = '\0';
}

}  // namespace AESDK_OpenGL
