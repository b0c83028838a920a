#include "plugin/entry/plugin_folder.h"

#include <string>

#include <gtest/gtest.h>

namespace {

TEST(PluginFolderTest, IsThePartBeforeTheLastBackslash) {
  EXPECT_EQ(plugin::FolderOf("C:\\Plug-ins\\x.aex"), "C:\\Plug-ins");
  EXPECT_EQ(plugin::FolderOf("x.aex"), "x.aex");
  const auto text = [](const std::string& bytes) {
    return plugin::PathText(reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  };
  EXPECT_EQ(text(std::string("C:\\a\0junk", 9)), "C:\\a");
  EXPECT_EQ(text(std::string("C\0:\0\\\0\xE4\0\0\0", 10)), "C:\\\xC3\xA4");
  // A pair of surrogates, then text that fills its room without an end.
  EXPECT_EQ(text(std::string("a\0\x3D\xD8\x00\xDE", 6)), "a\xF0\x9F\x98\x80");
  EXPECT_EQ(text(""), "");
}

}  // namespace
