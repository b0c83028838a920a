// What a POSIX shell can put in the place of a file, and how little memory it can leave.

#include <filesystem>
#include <string>

#include "base/image/image_file.h"
#include "tests/cli/command_fixture.h"

namespace {

constexpr const char* kSmallScene = R"({"size": [60, 40], "images": {"a": "a.png"}, "bones": [
    {"name": "A", "image": "a", "pieces": []}]})";

class LinuxLimits : public CommandTest {
 protected:
  LinuxLimits() { tarvo::WriteWholeFile(folder_ / "scene.json", kSmallScene); }

  [[nodiscard]] std::string Render(const std::string& scene) const {
    return "render " + Quoted(scene) + " -o " + Quoted(File("out.png"));
  }
};

TEST_F(LinuxLimits, OnlyRegularFilesAreRead) {
  EXPECT_EQ(Shell("mkfifo " + Quoted(File("pipe"))).code, 0);
  ExpectFailure(Render(File("pipe")), 2, "pipe: regular file expected, pipe given");
  ExpectFailure(Render("/dev/zero"), 2, "/dev/zero: regular file expected, device given");
  const struct {
    std::string link;
    std::string words;
  } images[] = {{"/dev/zero", "images.a: a.png: regular file expected, device given"},
                {File("pipe"), "images.a: a.png: regular file expected, pipe given"}};
  for (const auto& [link, words] : images) {
    std::filesystem::create_symlink(link, folder_ / "a.png");
    ExpectFailure(Render(File("scene.json")), 2, words);
    // The place of a frame that was made before.
    EXPECT_FALSE(tarvo::IsWholePng(folder_ / "a.png", 60, 40));
    std::filesystem::remove(folder_ / "a.png");
  }
  ExpectFailure("diff /dev/zero " + Quoted(File("pipe")), 2, "regular file expected");
}

TEST_F(LinuxLimits, JUnitIsXmlWhateverTheTextHolds) {
  const Outcome outcome =
      Run("check \"$(printf 'none\\377\\033]]>')\" --junit " + Quoted(File("x.xml")));
  EXPECT_EQ(outcome.code, 4) << outcome.err;
  const std::string junit = tarvo::ReadWholeFile(folder_ / "x.xml");
  EXPECT_NE(junit.find("none\xEF\xBF\xBD?]]&gt;"), std::string::npos) << junit;
  EXPECT_EQ(junit.find_first_of("\xFF\x1b"), std::string::npos) << junit;
  EXPECT_NE(outcome.err.find(R"(none\xFF\x1B]]>)"), std::string::npos) << outcome.err;
}

TEST_F(LinuxLimits, OutOfMemoryExitsWith4) {
#if defined(__SANITIZE_ADDRESS__)
  GTEST_SKIP() << "the address sanitizer itself needs more memory than is left here";
#endif
  tarvo::WritePng(folder_ / "a.png", tarvo::Picture(6000, 6000));
  ExpectFailure(Render(File("scene.json")), 4,
                "tarvo: out of memory: a.png: decoding a picture of 6000 x 6000 pixels",
                "ulimit -v 160000; ");
  // A scene that is well within its limits, and still too large for this machine.
  std::string many = R"({"size": [9, 9], "bones": [)";
  for (int i = 0; i < 2'000'000; ++i) {
    many += "[],";
  }
  tarvo::WriteWholeFile(folder_ / "many.json", many + "[]]}");
  ExpectFailure(Render(File("many.json")), 4, "tarvo: out of memory\n", "ulimit -v 120000; ");
}

}  // namespace
