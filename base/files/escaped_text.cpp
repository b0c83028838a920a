#include "base/files/escaped_text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace tarvo {
namespace {

constexpr char32_t kInvalid = 0xFFFFFFFF;

/// The character at the start of a text, and the bytes that it takes; kInvalid and one byte where
/// there is no well-formed UTF-8.
struct Character {
  char32_t code = kInvalid;
  std::size_t length = 1;
};

bool IsContinuation(char byte) { return (static_cast<unsigned char>(byte) & 0xC0) == 0x80; }

Character FirstOf(std::string_view text) {
  const auto lead = static_cast<unsigned char>(text.front());
  if (lead < 0x80) {
    return {lead, 1};
  }
  const std::size_t length = lead < 0xC2   ? 0
                             : lead < 0xE0 ? 2
                             : lead < 0xF0 ? 3
                             : lead < 0xF5 ? 4
                                           : 0;
  if (length == 0 || length > text.size() ||
      !std::all_of(text.begin() + 1, text.begin() + static_cast<std::ptrdiff_t>(length),
                   IsContinuation)) {
    return {};
  }
  char32_t code = lead & (0xFF >> (length + 1));
  for (const char byte : text.substr(1, length - 1)) {
    code = code << 6 | (static_cast<unsigned char>(byte) & 0x3F);
  }
  const char32_t least = length == 2 ? 0x80 : length == 3 ? 0x800 : 0x10000;
  const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
  return code < least || code > 0x10FFFF || isSurrogate ? Character{} : Character{code, length};
}

/// Calls `append(character, its bytes)` for each character of a text.
template <typename Append>
void ForEachCharacter(std::string_view text, Append append) {
  while (!text.empty()) {
    const Character first = FirstOf(text);
    append(first.code, text.substr(0, first.length));
    text.remove_prefix(first.length);
  }
}

bool IsControl(char32_t code) { return code < 0x20 || (code >= 0x7F && code <= 0x9F); }

std::string HexOf(std::string_view bytes) {
  std::string hex;
  for (const char byte : bytes) {
    std::array<char, 8> text{};
    std::snprintf(text.data(), text.size(), "\\x%02X",
                  static_cast<unsigned>(static_cast<unsigned char>(byte)));
    hex += text.data();
  }
  return hex;
}

std::string ForTerminalExcept(std::string_view text, char32_t kept) {
  std::string escaped;
  ForEachCharacter(text, [&](char32_t code, std::string_view bytes) {
    const bool isUnsafe = code == kInvalid || (IsControl(code) && code != kept);
    escaped += isUnsafe ? HexOf(bytes) : std::string(bytes);
  });
  return escaped;
}

}  // namespace

std::string ForTerminal(std::string_view text) { return ForTerminalExcept(text, kInvalid); }

std::string LinesForTerminal(std::string_view text) { return ForTerminalExcept(text, '\n'); }

std::string ForXml(std::string_view text) {
  std::string escaped;
  ForEachCharacter(text, [&](char32_t code, std::string_view bytes) {
    switch (code) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      case '\n':
        escaped += '\n';
        break;
      case kInvalid:
      case 0xFFFE:
      case 0xFFFF:
        escaped += "\xEF\xBF\xBD";
        break;
      default:
        escaped += IsControl(code) ? "?" : std::string(bytes);
    }
  });
  return escaped;
}

std::string Shortened(std::string_view text, std::size_t longest) {
  if (text.size() <= longest) {
    return std::string(text);
  }
  std::size_t end = longest;
  while (end > 0 && IsContinuation(text[end])) {
    --end;
  }
  return std::string(text.substr(0, end)) + "…";
}

}  // namespace tarvo
