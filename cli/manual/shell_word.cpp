#include <string_view>

#include "cli/manual/completion.h"

namespace tarvo {
namespace {

std::string Replaced(const std::string& text, char old, std::string_view replacement) {
  std::string result;
  for (const char character : text) {
    result += character == old ? std::string(replacement) : std::string(1, character);
  }
  return result;
}

}  // namespace

std::string ShellWord(const std::string& text) {
  return '\'' + Replaced(text, '\'', R"('\'')") + '\'';
}

std::string FishWord(const std::string& text) {
  return '\'' + Replaced(Replaced(text, '\\', R"(\\)"), '\'', R"(\')") + '\'';
}

}  // namespace tarvo
