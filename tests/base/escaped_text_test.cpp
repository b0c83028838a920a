#include "base/files/escaped_text.h"

#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

struct EscapeCase {
  std::string_view text;
  const char* terminal;
  const char* xml;
};

constexpr EscapeCase kEscapeCases[] = {
    {"plain, \xC3\xA9 \xE6\xBC\xA2 \xF0\x9F\x98\x80",
     "plain, \xC3\xA9 \xE6\xBC\xA2 \xF0\x9F\x98\x80",
     "plain, \xC3\xA9 \xE6\xBC\xA2 \xF0\x9F\x98\x80"},
    {"\x1b[31m\a\t\x7f", R"(\x1B[31m\x07\x09\x7F)", "?[31m???"},
    {std::string_view("a\0b", 3), R"(a\x00b)", "a?b"},
    {"\xC2\x9B"
     "2J",
     R"(\xC2\x9B2J)", "?2J"},  // the control character CSI in one
    {"]]><a b=\"&\">", "]]><a b=\"&\">", "]]&gt;&lt;a b=&quot;&amp;&quot;&gt;"},
    // Not UTF-8: a lone byte, a cut character, one in too many bytes, a surrogate, beyond the last.
    {"\xFF", R"(\xFF)", "\xEF\xBF\xBD"},
    {"\xE6\xBC", R"(\xE6\xBC)", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"\xC0\xAF", R"(\xC0\xAF)", "\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"\xED\xA0\x80", R"(\xED\xA0\x80)", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},
    {"\xEF\xBF\xBF", "\xEF\xBF\xBF", "\xEF\xBF\xBD"},
};

TEST(EscapedText, HasNothingThatATerminalObeysOrXmlCannotHold) {
  for (const auto& [text, terminal, xml] : kEscapeCases) {
    EXPECT_EQ(tarvo::ForTerminal(text), terminal);
    EXPECT_EQ(tarvo::ForXml(text), xml);
  }
  EXPECT_EQ(tarvo::LinesForTerminal("a\nb\r"), "a\nb\\x0D");
  EXPECT_EQ(tarvo::ForTerminal("a\nb"), "a\\x0Ab");
}

TEST(EscapedText, IsCutBetweenCharacters) {
  EXPECT_EQ(tarvo::Shortened("abc", 3), "abc");
  EXPECT_EQ(tarvo::Shortened("ab\xC3\xA9", 3), "ab…");
}

}  // namespace
