// What a command makes never takes the place of what it reads.

#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/frames_fixture.h"

namespace {

using tarvo::ReadWholeFile;

/// A file that a command reads under one name and would make under another.
struct Collision {
  const char* command;  ///< with $ for the folder
  const char* file;     ///< that must stay
};

class Outputs : public Frames {
 protected:
  Outputs() {
    tarvo::WriteWholeFile(folder_ / "scene.json", kHead + R"({"name": "Up", "image": "a", )" +
                                                      kCard + R"(}], "frames": {"count": 3}})");
    std::filesystem::copy_file(TARVO_PLUGIN, folder_ / "plugin.png");
  }

  [[nodiscard]] std::string InFolder(std::string command) const {
    for (std::size_t at = 0; (at = command.find('$', at)) != std::string::npos;) {
      command.replace(at, 1, folder_.string() + "/");
    }
    return command;
  }

  void ExpectAllStay(const std::vector<Collision>& collisions) const {
    for (const Collision& collision : collisions) {
      const std::string before = ReadWholeFile(folder_ / collision.file);
      ExpectFailure(InFolder(collision.command), 2, "would take the place of");
      EXPECT_EQ(ReadWholeFile(folder_ / collision.file), before) << collision.command;
    }
  }
};

TEST_F(Outputs, NeverTakeThePlaceOfWhatIsRead) {
  std::filesystem::create_hard_link(folder_ / "a.png", folder_ / "hard.png");
  std::filesystem::create_hard_link(folder_ / "a.png", folder_ / "f1.png");
  std::filesystem::create_hard_link(folder_ / "scene.json", folder_ / "scene.png");
  std::filesystem::create_directory(folder_ / "sub");
  ExpectAllStay({
      {"render $scene.json -o $a.png", "a.png"},
      {"render $scene.json -o $sub/../a.png", "a.png"},
      {"render $scene.json -o $hard.png", "hard.png"},
      {"render $scene.json -o $scene.png", "scene.png"},
      {"render $scene.json -o $f%d.png", "f1.png"},
      {"render $scene.json -o $f%d.png --missing", "f1.png"},
      {"render $scene.json -o $plugin.png --plugin $plugin.png", "plugin.png"},
      {"watch $scene.json -o $scene.png", "scene.png"},
      {"watch $scene.json -o $plugin.png --plugin $plugin.png", "plugin.png"},
      {"sheet $scene.json -o $hard.png", "hard.png"},
      {"sheet $scene.json -o $plugin.png --plugin $plugin.png", "plugin.png"},
      {"diff $a.png $b.png -o $hard.png", "hard.png"},
      {"diff $b.png $a.png -o $hard.png", "hard.png"},
      {"check $plugin.png --junit $plugin.png", "plugin.png"},
#ifdef _WIN32
      {"render $scene.json -o $A.PNG", "a.png"},
      {"diff $a.png $b.png -o $Hard.png", "hard.png"},
      {"check $Plugin.png --junit $plugin.PNG", "plugin.png"},
#endif
  });
  // What is absent is compared by its place.
  ExpectFailure(InFolder("check $none --junit $sub/../none"), 2, "would take the place of");
}

TEST_F(Outputs, AZeroByteInAFileNameIsRefused) {
  std::string scene = ReadWholeFile(folder_ / "scene.json");
  scene.replace(scene.find("a.png"), 5, "a.png\\u0000b");
  tarvo::WriteWholeFile(folder_ / "scene.json", scene);
  ExpectFailure(Arguments("a.png", ""), 2, "file name expected, one with a zero byte given");
}

TEST_F(Outputs, AnEmptyFileNameIsRefused) {
  const std::string nothing = "text expected, none given";
  for (const std::string command :
       {"check \"\"", "check --plugin \"\"", "check --junit \"\"", "render \"\" -o $o.png",
        "render $scene.json -o \"\"", "render $scene.json -o $o.png --plugin \"\"",
        "sheet $scene.json -o \"\"", "watch $scene.json -o \"\"",
        "explain $scene.json --plugin \"\"", "diff $a.png $b.png -o \"\"", "diff $a.png \"\""}) {
    ExpectFailure(InFolder(command), 2, nothing);
  }
}

TEST_F(Outputs, AReadOnlyFileStays) {
  const auto protect = [this](const std::string& name) {
    tarvo::WriteWholeFile(folder_ / name, "protected");
    std::filesystem::permissions(folder_ / name, std::filesystem::perms::owner_read);
  };
  for (const std::string name : {"o.png", "f1.png", "o.gif", "o.xml"}) {
    protect(name);
  }
  for (const std::string command :
       {"render $scene.json -o $o.png", "render $scene.json -o $f%d.png",
        "render $scene.json -o $o.gif", "sheet $scene.json -o $o.png",
        "diff $a.png $b.png -o $o.png", "check --junit $o.xml"}) {
    ExpectFailure(InFolder(command), 2, "it is read-only");
  }
  for (const std::string name : {"o.png", "f1.png", "o.gif", "o.xml"}) {
    EXPECT_EQ(ReadWholeFile(folder_ / name), "protected") << name;
    std::filesystem::permissions(folder_ / name, std::filesystem::perms::owner_all);
  }
}

TEST_F(Outputs, AreMadeWithoutBeingOnTheDiskItselfIfAsked) {
  for (const std::string command :
       {"render $scene.json -o $x.png --no-sync",
        "render $scene.json -o $x%d.png --no-sync --jobs 2",
        "sheet $scene.json -o $y.png --no-sync", "diff $a.png $a.png -o $z.png --no-sync"}) {
    EXPECT_EQ(Run(InFolder(command)).code, 0) << command;
  }
  EXPECT_EQ(ReadWholeFile(folder_ / "x0.png").substr(1, 3), "PNG");
}

}  // namespace
