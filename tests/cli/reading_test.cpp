// The commands that help to read the overlap, run as a user runs them.

#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "base/image/image_file.h"
#include "tests/cli/command_fixture.h"

namespace {

using nlohmann::json;
using tarvo::Picture;
using tarvo::Rgba;

std::string Example(const std::string& name) {
  return Quoted(std::string(TARVO_EXAMPLES) + "/" + name + "/" + name + ".json");
}

// Two opaque bones of which one lies on the other. Red moves from -1 over Green's 0 to 2; the first
// flip lies on the way, at the third frame, the second one on a key. Green's keys change
// nothing.
constexpr const char* kCrossing = R"({
  "size": [60, 60], "images": {"red": "red.png", "green": "green.png"},
  "frames": {"count": 9, "bones": {"Red": {"z": [
    {"frame": 0, "value": -1}, {"frame": 5, "value": 1.5, "ease": "hold"},
    {"frame": 7, "value": -1}]}, "Green": {"z": [
    {"frame": 2, "value": 0}, {"frame": 7, "value": 0}]}}},
  "bones": [
    {"name": "Red", "image": "red", "pieces": [
      {"corners": [[10, 10], [50, 10], [50, 50], [10, 50]],
       "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0.5},
      {"corners": [[20, 10], [50, 10], [50, 50], [20, 50]],
       "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0.5}]},
    {"name": "Green", "image": "green", "z": 0, "opacity": 0.5, "pieces": [
      {"corners": [[30, 10], [55, 10], [55, 50], [30, 50]],
       "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0.5}]}]})";

class Reading : public CommandTest {
 protected:
  Reading() {
    WritePng(folder_ / "red.png", Picture(32, 32, {200, 0, 0, 255}));
    WritePng(folder_ / "green.png", Picture(32, 32, {0, 160, 0, 255}));
    tarvo::WriteWholeFile(folder_ / "scene.json", kCrossing);
  }

  [[nodiscard]] json RunJson(const std::string& arguments) const {
    const Outcome outcome = Run(arguments + " --json");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return json::parse(outcome.out, nullptr, false);
  }

  [[nodiscard]] std::string Scene() const { return Quoted(File("scene.json")); }
};

TEST_F(Reading, ExplainedPixelsMatchThePlugin) {
  struct Place {
    const char* scene;
    const char* at;
  };
  const std::vector<Place> places = {
      {"wave", "545,440"},  // head, forearm, neck and chest overlap
      {"wave", "540,470"},  // below the head, the forearm is in front
      {"cape", "334,436"},  // three layers of one veil: its owner leaves two out in exact mode
  };
  for (const auto& [scene, at] : places) {
    for (const std::string mode : {" --fast", " --exact"}) {
      SCOPED_TRACE(scene + mode + " at " + at);
      const json pixel = RunJson("explain " + Example(scene) + mode + " --at " + at)["pixel"];
      ASSERT_GE(pixel["pieces"].size(), 3U);
      ASSERT_TRUE(pixel["comparable"].get<bool>());
      EXPECT_LE(pixel["difference"].get<int>(), 4);
      // What the pieces add comes to the colour, but for the rounding of each step.
      for (std::size_t channel = 0; channel < 4; ++channel) {
        double sum = 0;
        for (const json& piece : pixel["pieces"]) {
          sum += piece["over"][channel].get<double>() + piece["maxPass"][channel].get<double>();
        }
        EXPECT_NEAR(sum, pixel["premultiplied"][channel].get<double>(), 4.0 / 255);
      }
    }
  }
}

TEST_F(Reading, ExplainsSlidersOrderAndTies) {
  const json told = RunJson("explain " + Scene() + " --frame 1 --exact --at 40,30");
  // Half way from -1 on, 2.5 in 5 frames: -0.5 at frame 1; both pieces of Red tie.
  EXPECT_EQ(told["sliders"][0], json({{"parameter", 1},
                                      {"label", "Red start Z"},
                                      {"value", -0.5},
                                      {"shown", true},
                                      {"bones", {1}}}));
  EXPECT_EQ(told["sliders"][4]["shown"], false);
  ASSERT_EQ(told["pieces"].size(), 3U);
  EXPECT_EQ(told["pieces"][0]["name"], "Red");
  EXPECT_EQ(told["pieces"][0]["inFrontOfNextBy"], "sort");
  EXPECT_EQ(told["pieces"][1]["inFrontOfNextBy"], "depth");
  EXPECT_EQ(told["ties"], json::array({{{"first", 1}, {"last", 2}, {"overlapping", true}}}));
  // Red's first piece, gathered first, has changed places with Green and come to the front; the
  // second was the pivot.
  EXPECT_EQ(told["pieces"][0]["piece"], 0);
  const json& pixel = told["pixel"];
  EXPECT_EQ(pixel["plugin"], json({200, 0, 0, 255}));
  EXPECT_EQ(pixel["pieces"][0]["owner"], true);
  EXPECT_EQ(pixel["pieces"][1]["composited"], false);
  // Green at half opacity is behind: nothing of it is seen, nor of the maxPass.
  EXPECT_EQ(pixel["pieces"][2]["over"], json({0.0, 0.0, 0.0, 0.0}));

  const json level =
      RunJson("explain " + Scene() + " --set \"Red start Z=0\" --set \"Red end Z=0\"");
  EXPECT_EQ(level["pieces"][0]["name"], "Green");
  EXPECT_EQ(level["pieces"][0]["inFrontOfNextBy"], "bone number");
  EXPECT_FALSE(level.contains("pixel"));

  ExpectFailure("explain " + Scene() + " --at 4x5", 2, "X,Y in whole layer pixels expected");
  ExpectFailure("explain " + Scene() + " --frame 9", 2, "frame from 0 to 8 expected, \"9\" given");
}

TEST_F(Reading, FindsFlipsAndWhatMadeThem) {
  const json flips = RunJson("flips " + Scene())["flips"];
  ASSERT_EQ(flips.size(), 2U) << flips;
  EXPECT_EQ(flips[0]["frame"], 2);  // at 0, where the higher bone number is in front
  EXPECT_EQ(flips[0]["front"], "Green");
  EXPECT_EQ(flips[0]["pairs"], 2);
  EXPECT_EQ(flips[0]["pixels"], 2 * 20 * 40);
  EXPECT_EQ(flips[0]["cause"], "interpolation");
  EXPECT_EQ(flips[0]["tracks"].size(), 1U) << flips;
  EXPECT_EQ(flips[0]["tracks"][0]["to"], 5);
  EXPECT_EQ(flips[1]["frame"], 7);
  EXPECT_EQ(flips[1]["front"], "Red");
  EXPECT_EQ(flips[1]["cause"], "key");
  // A slider that the command line holds still has no part in it, and no flip is left.
  EXPECT_EQ(
      RunJson("flips " + Scene() + " --set \"Red start Z=-2\" --set \"Red end Z=-2\"")["flips"],
      json::array());
  EXPECT_NE(Run("flips " + Scene()).out.find("z of Red at 0, then it changes at 5."),
            std::string::npos);
}

TEST_F(Reading, DiffEndsWithWhatItFound) {
  Picture picture(20, 10, {100, 100, 100, 255});
  WritePng(folder_ / "a.png", picture);
  picture.At(7, 3).green = 103;
  WritePng(folder_ / "b.png", picture);
  WritePng(folder_ / "c.png", Picture(10, 20));
  const std::string a = Quoted(File("a.png")) + " ";
  const Outcome differs = Run("diff " + a + Quoted(File("b.png")) + " -o " + Quoted(File("d.png")));
  EXPECT_EQ(differs.code, 1);
  EXPECT_NE(differs.out.find("1 of 200 pixels (0.500 %) differ by more than 0; the largest "
                             "difference is 3, first at (7, 3)"),
            std::string::npos)
      << differs.out;
  const Picture beside = tarvo::ReadPng(folder_ / "d.png");
  EXPECT_EQ(beside.width, 3 * 20 + 2 * 8);
  EXPECT_EQ(beside.At(2 * 28 + 7, 3), (Rgba{255, 3, 3, 255}));
  EXPECT_EQ(beside.At(2 * 28 + 8, 3), (Rgba{0, 0, 0, 255}));
  EXPECT_EQ(Run("diff " + a + Quoted(File("b.png")) + " --tolerance 3").code, 0);
  EXPECT_EQ(Run("diff " + a + Quoted(File("c.png"))).code, 1);
  ExpectFailure("diff " + a + Quoted(File("none.png")), 2, "none.png: cannot be opened");
  ExpectFailure("diff " + a + a + "--tolerance 256", 2, "from 0 to 255 expected");
}

TEST_F(Reading, ShowsDepthAndOwnersInFalseColours) {
  const auto shown = [&](const std::string& what) {
    const Outcome outcome =
        Run("render " + Scene() + " --layer --show " + what + " -o " + Quoted(File("out.png")));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return tarvo::ReadPng(folder_ / "out.png");
  };
  // Near the upper edge, clear of legends and tags: Red alone, Red before Green, Green alone.
  const Picture depth = shown("depth");
  EXPECT_EQ(depth.At(14, 12), depth.At(40, 12));
  EXPECT_NE(depth.At(14, 12), depth.At(53, 12));
  EXPECT_EQ(depth.At(57, 12), Rgba{});
  const Picture owner = shown("owner");
  EXPECT_NE(owner.At(14, 12), owner.At(53, 12));
  const Picture plain = shown("bones");
  EXPECT_EQ(plain.At(17, 17), (Rgba{200, 0, 0, 255}));  // the frame goes on under the outlines
  EXPECT_NE(shown("pieces"), plain);
  ExpectFailure("render " + Scene() + " --show depht -o " + Quoted(File("x.png")), 2,
                "bones, pieces, depth or owner expected, \"depht\" given");
}

TEST_F(Reading, SheetHoldsACellForEveryFrameModeAndValue) {
  const auto made = [&](const std::string& options) {
    const Outcome outcome =
        Run("sheet " + Scene() + " -o " + Quoted(File("s.png")) + " --cell 60 " + options);
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    return tarvo::ReadPng(folder_ / "s.png");
  };
  const Picture sweep = made("--sweep \"Green start Z=-9..9:4\" --background white");
  EXPECT_EQ(sweep.width, 4 * 68 + 8);
  EXPECT_EQ(sweep.height, 84 + 8);
  // Where both lie, Green is in front first (-4.5 half way along) and behind at last.
  EXPECT_NE(sweep.At(8 + 40, 8 + 16 + 30), sweep.At(3 * 68 + 8 + 40, 8 + 16 + 30));
  EXPECT_EQ(made("--frames 0,4,8 --both").width, 4 * 68 + 8);
  ExpectFailure("sheet " + Scene() + " -o " + Quoted(File("x.png")) + " --sweep \"Red end Z=1..2\"",
                2, "LABEL=FROM..TO:COUNT");
}

}  // namespace
