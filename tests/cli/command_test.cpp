#include <algorithm>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/image/image_file.h"
#include "tests/cli/command_fixture.h"

namespace {

using tarvo::Picture;
using tarvo::ReadPng;
using tarvo::ReadWholeFile;
using tarvo::Rgba;

constexpr Rgba kRed{200, 30, 30, 255};
constexpr Rgba kGreen{30, 160, 30, 255};
constexpr Rgba kClear{};

const std::filesystem::path kBroken = std::filesystem::path(TARVO_EXAMPLES) / "broken";

// Two bones whose pieces lie on one another in the middle of the layer, from 10 to 90.
constexpr const char* kScene = R"({
  "size": [100, 120], "images": {"red": "red.png", "green": "green.png"},
  "bones": [
    {"name": "Red", "image": "red", "z": [1, 3],
     "pieces": [{"corners": [[10, 10], [90, 10], [90, 90], [10, 90]],
                 "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0.5}]},
    {"name": "Green", "image": "green", "z": 4,
     "strip": {"rest": [[1, 16], [31, 16]], "width": 30, "pose": [[10, 50], [90, 50]],
               "poseWidth": 80, "pieces": 4}}]})";

// Two half-transparent pieces of one image, one on the other and turned around.
constexpr const char* kVeil = R"({
  "size": [100, 100], "images": {"veil": "veil.png"},
  "bones": [
    {"name": "Veil", "image": "veil", "opacity": 1, "pieces": [
      {"corners": [[10, 10], [90, 10], [90, 90], [10, 90]],
       "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0.2},
      {"corners": [[10, 10], [90, 10], [90, 90], [10, 90]],
       "uv": [[31, 31], [1, 31], [1, 1], [31, 1]], "t": 0.7}]}]})";

/// A folder with scenes and images.
class RenderCommand : public CommandTest {
 protected:
  RenderCommand() {
    tarvo::WritePng(folder_ / "red.png", Picture(32, 32, kRed));
    tarvo::WritePng(folder_ / "green.png", Picture(32, 32, kGreen));
    tarvo::WritePng(folder_ / "veil.png", Picture(32, 32, {100, 100, 100, 150}));
    tarvo::WriteWholeFile(folder_ / "scene.json", kScene);
    tarvo::WriteWholeFile(folder_ / "veil.json", kVeil);
  }

  /// Renders a scene of the folder, which must go well, and reads the picture.
  [[nodiscard]] Picture Render(const std::string& scene, const std::string& options = "") const {
    const Outcome outcome =
        Run("render " + Quoted(File(scene)) + " -o " + Quoted(File("out.png")) + " " + options);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return outcome.code == 0 ? ReadPng(folder_ / "out.png") : Picture(200, 200);
  }
};

TEST_F(RenderCommand, SaysWhatItMadeInOneLine) {
  const Outcome outcome =
      Run("render " + Quoted(File("scene.json")) + " -o " + Quoted(File("out.png")));
  EXPECT_EQ(outcome.code, 0);
  EXPECT_EQ(outcome.err, "");
  // 80 pixels and 5 % on each side.
  EXPECT_NE(outcome.out.find("out.png: 88x88, 5 pieces, "), std::string::npos) << outcome.out;
  EXPECT_TRUE(outcome.out.ends_with(" ms\n")) << outcome.out;
  EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
  EXPECT_EQ(ReadPng(folder_ / "out.png").width, 88);
  EXPECT_EQ(
      Run("render " + Quoted(File("scene.json")) + " --quiet -o " + Quoted(File("b.png"))).out, "");
  EXPECT_EQ(Run("--version").out, "tarvo " TARVO_VERSION "\n");
  EXPECT_NE(Run("render --help").out.find("tarvo render examples/"), std::string::npos);
}

/// The folder, the scene, its image, the plug-in and the picture: letters of several scripts.
TEST_F(RenderCommand, FilesMayHaveAnyName) {
  const tarvo::FilePath folder((folder_ / "").string() + "B\u00fchne \u6f22\u5b57 \u0416");
  std::filesystem::create_directories(folder.Get());
  const auto file = [&](const std::string& name) { return folder.Get().string() + "/" + name; };
  std::string scene = kScene;
  scene.replace(scene.find("red.png"), 7, "r\u00f6d.png");
  tarvo::WriteWholeFile(file("s.json"), scene);
  std::filesystem::copy(folder_ / "green.png", folder.Get() / "green.png");
  std::filesystem::copy(folder_ / "red.png", tarvo::FilePath(file("r\u00f6d.png")).Get());
  std::filesystem::copy_file(TARVO_PLUGIN, tarvo::FilePath(file("\u017c.aex")).Get());
  const std::string picture = file("\u00e4.png");
  const Outcome outcome = Run("render " + Quoted(file("s.json")) + " --plugin " +
                              Quoted(file("\u017c.aex")) + " -o " + Quoted(picture));
  EXPECT_EQ(outcome.code, 0) << outcome.err;
  EXPECT_TRUE(outcome.out.starts_with(picture)) << outcome.out;
  EXPECT_EQ(ReadPng(picture).width, 88);
}

TEST_F(RenderCommand, MovesSlidersAsAUserWould) {
  // Red's one piece lies half way between its two Z, at 2; Green's four are all at 4, and cover 20
  // pixels each from x = 10. Lower is in front.
  struct Case {
    const char* options;
    Rgba inFirst;  // of Green's pieces
    Rgba inThird;
  };
  const std::vector<Case> cases = {
      {"", kRed, kRed},
      {"--set \"Red start Z=7\"", kGreen, kGreen},                          // Red at 5
      {"--set \"Green start Z=0\" --set \"Green end Z=8\"", kGreen, kRed},  // at 1 and at 5
      {"--set \"Red end Z=9\" --set \"Red end Z=3\"", kRed, kRed},          // the last one counts
  };
  for (const Case& test : cases) {
    const Picture picture = Render("scene.json", std::string("--layer ") + test.options);
    EXPECT_EQ(picture.At(20, 44), test.inFirst) << test.options;
    EXPECT_EQ(picture.At(60, 44), test.inThird) << test.options;
  }
}

TEST_F(RenderCommand, CropsScalesAndPaintsBehind) {
  const Picture whole = Render("scene.json");
  EXPECT_EQ(whole.At(0, 0), kClear);
  EXPECT_EQ(whole.At(5, 5), kRed);  // the layer's (10, 10) is at (4, 4)

  const Picture layer = Render("scene.json", "--layer");
  EXPECT_EQ(layer.width, 100);
  EXPECT_EQ(layer.height, 120);
  EXPECT_EQ(layer.At(11, 11), kRed);
  EXPECT_EQ(layer.At(8, 8), kClear);
  EXPECT_EQ(layer.At(50, 119), kClear);

  const Picture third = Render("scene.json", "--layer --scale 1/3 --background \"#12f\"");
  EXPECT_EQ(third.width, 34);  // 100 / 3, rounded up
  EXPECT_EQ(third.height, 40);
  EXPECT_EQ(third.At(15, 15), kRed);
  EXPECT_EQ(third.At(33, 39), (Rgba{0x11, 0x22, 0xff, 255}));

  const Picture checker = Render("veil.json", "--layer --exact --background checker");
  EXPECT_EQ(checker.At(0, 0), (Rgba{255, 255, 255, 255}));
  EXPECT_NE(checker.At(30, 40), checker.At(34, 40));  // seen through the veil
}

TEST_F(RenderCommand, TraceListsEveryCommandFromSetUpToSetDown) {
  const std::string trace =
      Run("render " + Quoted(File("scene.json")) + " --trace -o " + Quoted(File("out.png"))).err;
  const auto sent = [&](const std::string& command) {
    const std::string line = "> " + command + "\n";
    std::size_t count = 0;
    for (std::size_t at = trace.find(line); at != std::string::npos;
         at = trace.find(line, at + 1)) {
      ++count;
    }
    return count;
  };
  EXPECT_EQ(sent("PF_Cmd_SEQUENCE_SETUP"), 1U);
  EXPECT_EQ(sent("PF_Cmd_USER_CHANGED_PARAM"), 4U);  // two bones, a pair of sliders each
  EXPECT_EQ(sent("PF_Cmd_COMPLETELY_GENERAL"), 4U);  // two messages, two answers to the nudges
  EXPECT_EQ(sent("PF_Cmd_GLOBAL_SETDOWN"), 1U);
}

TEST_F(RenderCommand, RefusesWrongInput) {
  const std::string scene = Quoted(File("scene.json"));
  const std::string render = "render " + scene + " -o " + Quoted(File("x.png")) + " ";
  ExpectFailure("", 2, "A command is required");
  ExpectFailure("redner", 2, "redner");
  ExpectFailure("render -o x.png", 2, "scene is required");
  ExpectFailure("render " + scene, 2, "--output is required");
  ExpectFailure(render + "--exact --fast", 2, "excludes");
  ExpectFailure(render + "--scale 1/0", 2, "1/N with N from 1 to 99 expected, \"1/0\" given");
  ExpectFailure(render + "--scale 0.5 --background pink", 2, "\"pink\" given");
  ExpectFailure(render + "--background \"#12\"", 2, "\"#12\" given");
  ExpectFailure(render + "--set \"Red start Z\"", 2, "LABEL=NUMBER expected");
  ExpectFailure(render + "--set \"Red start Z=inf\"", 2, "LABEL=NUMBER expected");
  ExpectFailure(render + "--set \"Rod start Z=1\"", 2, "the nearest is \"Red start Z\"");
  ExpectFailure(render + "--set \"Bone 3 start Z=1\"", 2, "hidden");
  ExpectFailure(render + "--set \"Fast transparency=2\"", 2, "from 0 to 1 expected, 2 given");
  ExpectFailure("render " + scene + " -o " + Quoted(File("none/x.png")), 2, "does not exist");
  ExpectFailure("render none.json -o " + Quoted(File("x.png")), 2, "none.json: cannot be opened");
}

TEST_F(RenderCommand, TellsAFaultOfThePluginFromOneOfItsFile) {
  const std::string bare = R"({"size": [40, 30], "bones": []})";
  tarvo::WriteWholeFile(folder_ / "bare.json", bare);
  tarvo::WriteWholeFile(folder_ / "x.png", "an older picture");
  const std::string render =
      "render " + Quoted(File("bare.json")) + " -o " + Quoted(File("x.png")) + " --plugin ";
  ExpectFailure(render + Quoted(TARVO_FAILING_PLUGIN), 3, "render returned 512: no paint left\n");
  ExpectFailure(render + Quoted(TARVO_LEAKING_PLUGIN), 3, "PF Handle Suite");
  ExpectFailure(render + Quoted(TARVO_LEAKING_PLUGIN), 3, "4 bytes");
  ExpectFailure(render + Quoted(TARVO_ENTRYLESS_PLUGIN), 4, "EntryPointFunc");
  ExpectFailure(render + Quoted(File("none.so")), 4, "none.so");
  EXPECT_EQ(ReadWholeFile(folder_ / "x.png"), "an older picture");
}

// Behind "--" come names, as many as the command needs, and then options again.
TEST_F(RenderCommand, NamesMayBeginWithADash) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder_);
  std::filesystem::copy("scene.json", "-a.json");
  std::filesystem::copy("scene.json", "check");
  std::filesystem::copy("red.png", "-b.png");
  const struct {
    const char* arguments;
    int code;
  } cases[] = {
      {"render -- -a.json --jobs 2 -o f%d.png", 0}, {"render -o x.png -- -a.json", 0},
      {"render -o x.png -- check --quiet", 0},      {"render --set -- -o x.png -a.json", 2},
      {"diff -- -b.png -b.png --tolerance 2", 0},   {"diff red.png -- -b.png --tolerance 2", 0},
      {"diff red.png -- -b.png -b.png", 2},
  };
  for (const auto& [arguments, code] : cases) {
    EXPECT_EQ(Run(arguments).code, code) << arguments << Run(arguments).err;
  }
  std::filesystem::current_path(before);
}

// A name of a scene must not reach a terminal as a control sequence.
TEST_F(RenderCommand, WritesNoControlCharacters) {
  std::string scene = kScene;
  scene.replace(scene.find("\"Red\""), 5, "\"R\\u001b[2Jd\\n\"");
  tarvo::WriteWholeFile(folder_ / "esc.json", scene);
  std::string wrong = scene;
  wrong.replace(wrong.find("\"image\": \"red\""), 14, "\"image\": \"x\\u009b2J\"");
  tarvo::WriteWholeFile(folder_ / "wrong.json", wrong);
  for (const std::string& command :
       {"explain " + Quoted(File("esc.json")), "flips " + Quoted(File("esc.json")),
        "render --trace -o " + Quoted(File("x.png")) + " " + Quoted(File("esc.json")),
        "render --set \"R=1\" -o " + Quoted(File("x.png")) + " " + Quoted(File("esc.json")),
        "render -o " + Quoted(File("x.png")) + " " + Quoted(File("wrong.json"))}) {
    const Outcome outcome = Run(command);
    for (const std::string& text : {outcome.out, outcome.err}) {
      EXPECT_EQ(text.find('\x1b'), std::string::npos) << command << text;
      EXPECT_EQ(text.find("\xC2\x9B"), std::string::npos) << command << text;
    }
  }
  EXPECT_NE(Run("explain " + Quoted(File("esc.json"))).out.find(R"(R\x1B[2Jd\x0A start Z)"),
            std::string::npos);
}

/// Every wrong scene says all that is wrong with it and nothing else.
TEST_F(RenderCommand, RefusesEveryBrokenSampleInItsOwnWords) {
  std::vector<std::filesystem::path> scenes;
  for (const auto& entry : std::filesystem::directory_iterator(kBroken)) {
    if (entry.path().extension() == ".json") {
      scenes.push_back(entry.path());
    }
  }
  ASSERT_GE(scenes.size(), 20U);
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(kBroken);
  for (const auto& scene : scenes) {
    const std::string name = scene.filename().string();
    SCOPED_TRACE(name);
    const Outcome outcome = Run("render " + name + " -o " + Quoted(File("x.png")));
    EXPECT_EQ(outcome.code, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, ReadWholeFile(scene.stem().string() + ".expected"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "x.png"));
  }
  std::filesystem::current_path(before);
}

}  // namespace
