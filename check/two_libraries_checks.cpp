// Two versions of the plug-in installed side by side are two files in one process.

#include <filesystem>
#include <optional>
#include <random>
#include <string>

#include "check/support/pieces.h"
#include "check/support/requirement.h"
#include "check/support/rig.h"
#include "standin/loader/plugin_library.h"

namespace check::two_libraries {
namespace {

/// A library of its own: a copy of the installed file under another name.
class OtherFile {
 public:
  ~OtherFile() { std::filesystem::remove(path_); }

  [[nodiscard]] std::string Path() const { return path_.string(); }

 private:
  static std::filesystem::path Copy() {
    std::filesystem::path path = std::filesystem::path(testing::TempDir()) /
                                 ("other-" + std::to_string(std::random_device{}()) + ".aex");
    std::filesystem::copy_file(PluginFile(), path);
    return path;
  }

  const std::filesystem::path path_ = Copy();
};

tarvo::Picture Draw(TestRig& rig, unsigned seed) {
  rig.AddBone(Pattern(64, 64, seed), {Piece({20, 20, 120, 100}, {1, 1, 63, 63}, 0.5)});
  rig.Send();
  return rig.Render().picture;
}

CHECK(TwoLibraries, StartRenderAndStopIndependently,
      "Two files of the plug-in in one process draw and end independently.") {
  if (PluginFile().empty()) {
    GTEST_SKIP() << "the plug-in is linked in: there is one";
  }
  const OtherFile file;
  const standin::PluginLibrary other(file.Path());
  ASSERT_NE(other.EntryPoint(), PluginUnderCheck());
  TestRig alone(PluginUnderCheck());
  const tarvo::Picture expected = Draw(alone, 1);
  const tarvo::Picture expectedOther = Draw(alone, 2);
  EndHostInOrder(alone.host);

  std::optional<TestRig> first(PluginUnderCheck());
  TestRig second(other.EntryPoint());
  EXPECT_EQ(Draw(*first, 1), expected);
  Draw(second, 1);
  EXPECT_EQ(Draw(second, 2), expectedOther);
  // One goes, and the other draws on.
  EndHostInOrder(first->host);
  EXPECT_EQ(second.Render().picture, expectedOther);
  EndHostInOrder(second.host);
}

}  // namespace
}  // namespace check::two_libraries
