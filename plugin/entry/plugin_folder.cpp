#include "plugin/entry/plugin_folder.h"

#include <algorithm>
#include <array>

namespace plugin {
namespace {

/// Room for 520 characters of 16 bits, twice the longest path that hosts write.
constexpr std::size_t kPathBytes = 1040;

void AppendUtf8(std::string& text, char32_t character) {
  const auto continuation = [&](unsigned shift) {
    text.push_back(static_cast<char>(0x80U | ((character >> shift) & 0x3FU)));
  };
  if (character < 0x80U) {
    text.push_back(static_cast<char>(character));
  } else if (character < 0x800U) {
    text.push_back(static_cast<char>(0xC0U | (character >> 6U)));
    continuation(0);
  } else if (character < 0x10000U) {
    text.push_back(static_cast<char>(0xE0U | (character >> 12U)));
    continuation(6);
    continuation(0);
  } else {
    text.push_back(static_cast<char>(0xF0U | (character >> 18U)));
    continuation(12);
    continuation(6);
    continuation(0);
  }
}

std::string Utf8FromUtf16(const unsigned char* bytes, std::size_t size) {
  const auto unitAt = [&](std::size_t at) -> char32_t {
    return at + 1 < size ? static_cast<char32_t>(bytes[at] | (bytes[at + 1] << 8U)) : 0;
  };
  std::string text;
  for (std::size_t at = 0; unitAt(at) != 0; at += 2) {
    char32_t character = unitAt(at);
    const char32_t next = unitAt(at + 2);
    if ((character & 0xFC00U) == 0xD800U && (next & 0xFC00U) == 0xDC00U) {
      character = 0x10000U + ((character & 0x3FFU) << 10U) + (next & 0x3FFU);
      at += 2;
    }
    AppendUtf8(text, character);
  }
  return text;
}

}  // namespace

std::string FolderOf(std::string_view path) {
  return std::string(path.substr(0, path.rfind('\\')));
}

std::string PathText(const unsigned char* bytes, std::size_t size) {
  if (size >= 2 && bytes[0] != 0 && bytes[1] == 0) {
    return Utf8FromUtf16(bytes, size);
  }
  return {bytes, std::find(bytes, bytes + size, 0)};
}

std::string PluginFolder(PF_InData& in) {
  std::array<unsigned char, kPathBytes> path{};
  in.utils->get_platform_data(in.effect_ref, PF_PlatData_EXE_FILE_PATH_W, path.data());
  return FolderOf(PathText(path.data(), path.size()));
}

}  // namespace plugin
