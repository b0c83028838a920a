// The one place where the PNG library's code is compiled. Its warnings are its own.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpragmas"
#pragma GCC diagnostic ignored "-Wunknown-warning-option"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wsign-conversion"
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wduplicated-branches"
#pragma GCC diagnostic ignored "-Wnull-dereference"

#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#include <cstdlib>

#include <stb/stb_image.h>
#include <zlib.h>

/// The library's own compression takes four times as long, and its files are larger. The library
/// frees the result.
static unsigned char* CompressWithZlib(unsigned char* data, int size, int* compressedSize,
                                       int level) {
  uLongf bytes = compressBound(static_cast<uLong>(size));
  auto* const compressed = static_cast<unsigned char*>(std::malloc(bytes));
  if (compressed == nullptr ||
      compress2(compressed, &bytes, data, static_cast<uLong>(size), level) != Z_OK) {
    std::free(compressed);
    return nullptr;
  }
  *compressedSize = static_cast<int>(bytes);
  return compressed;
}

#define STBIW_ZLIB_COMPRESS CompressWithZlib
#define STB_IMAGE_WRITE_IMPLEMENTATION
#define STBI_WRITE_NO_STDIO
#include <stb/stb_image_write.h>

#pragma GCC diagnostic pop

#include "base/image/image_file_stb.h"

namespace tarvo {

void ForgetDecoderFailure() { stbi__g_failure_reason = nullptr; }

}  // namespace tarvo
