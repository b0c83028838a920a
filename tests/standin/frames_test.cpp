#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "standin/image_file.h"
#include "tests/standin/command_fixture.h"

namespace {

using standin::Picture;
using standin::ReadPng;
using standin::ReadWholeFile;

const std::string kHead =
    R"({"size": [60, 40], "images": {"a": "a.png", "b": "b.png", "c": "c.png", "d": "d.png"}, "bones": [)";
const std::string kCard =
    R"("pieces": [{"corners": [[10, 10], [50, 10], [50, 30], [10, 30]], "uv": [[1, 1], [31, 1], [31, 31], [1, 31]], "t": 0}])";

/// One bone at rest and one above it with these keys.
std::string Moving(int count, const std::string& keys, const std::string& more = "") {
  return kHead + R"({"name": "Up", "image": "a", )" + kCard + "}, " +
         R"({"name": "Down", "image": "b", "z": 3, )" + kCard + R"(}], "frames": {"count": )" +
         std::to_string(count) + R"(, "bones": {"Up": {)" + keys + "}}" + more + "}}";
}

// Everything that can change, changes; numbers move up while the first bone is off.
const std::string kRich =
    Moving(12,
           R"("corners": [{"frame": 0, "value": [[[10, 10], [50, 10], [50, 30], [10, 30]]]},
                   {"frame": 11, "value": [[[20, 5], [55, 15], [45, 35], [12, 30]]]}],
       "image": [{"frame": 0, "value": "a"}, {"frame": 3, "value": "c"}, {"frame": 9, "value": "a"}],
       "opacity": [{"frame": 0, "value": 1, "ease": "hold"}, {"frame": 2, "value": 0.5, "ease": "hold"}, {"frame": 7, "value": 0.8}],
       "z": [{"frame": 0, "value": 0}, {"frame": 10, "value": [2, 6]}],
       "active": [{"frame": 0, "value": true}, {"frame": 5, "value": false}, {"frame": 7, "value": true}])",
           R"(, "set": {"Down end Z": [{"frame": 0, "value": 1}, {"frame": 11, "value": 9}]},
        "fast": [{"frame": 0, "value": true}, {"frame": 8, "value": false}])");

class Frames : public CommandTest {
 protected:
  Frames() {
    const std::vector<standin::Rgba> colours = {
        {200, 30, 30, 255}, {30, 160, 30, 255}, {30, 30, 200, 255}, {240, 240, 20, 255}};
    for (std::size_t i = 0; i < colours.size(); ++i) {
      WritePng(folder_ / (std::string(1, static_cast<char>('a' + i)) + ".png"),
               Picture(32, 32, colours[i]));
    }
  }

  /// Renders a scene with these options; the output's name is the folder's.
  [[nodiscard]] Outcome Render(const std::string& scene, const std::string& output,
                               const std::string& options = "",
                               const std::string& before = "") const {
    standin::WriteWholeFile(folder_ / "scene.json", scene);
    return Run(Arguments(output, options), before);
  }

  [[nodiscard]] std::string Arguments(const std::string& output, const std::string& options) const {
    return "render " + Quoted(File("scene.json")) + " -o " +
           (output == "-" ? output : Quoted(File(output))) + " " + options;
  }

  void ExpectSame(const std::string& a, const std::string& b, int first, int last) const {
    for (int frame = first; frame <= last; ++frame) {
      const std::string ending = std::to_string(frame) + ".png";
      EXPECT_EQ(ReadWholeFile(folder_ / (a + ending)), ReadWholeFile(folder_ / (b + ending)))
          << b << ending;
    }
  }
};

TEST_F(Frames, SendsOnlyWhatIsNew) {
  struct Case {
    const char* keys;
    const char* sent;
  };
  // The two bones send at the start, and again when Down's Z is set.
  const std::vector<Case> cases = {
      {R"("image": [{"frame": 0, "value": "a"}, {"frame": 30, "value": "c"}, {"frame": 60, "value": "d"}])",
       " 6 messages, 4 images\n"},
      {R"("corners": [{"frame": 0, "value": [[[10, 10], [50, 10], [50, 30], [10, 30]]]},
                      {"frame": 50, "value": [[[12, 10], [52, 10], [52, 30], [12, 30]]]}])",
       " 54 messages, 2 images\n"},
      {R"("opacity": [{"frame": 0, "value": 1}, {"frame": 10, "value": 0.5}])",
       " 14 messages, 12 images\n"},
      {R"("active": [{"frame": 0, "value": true}, {"frame": 20, "value": false}])",
       " 6 messages, 2 images\n"},  // Up's farewell; Down's Z moves to the first pair, and nudges
  };
  for (const Case& test : cases) {
    const Outcome outcome = Render(Moving(100, test.keys), "f%d.png");
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(outcome.out.ends_with(test.sent)) << test.keys << "\n" << outcome.out;
  }
}

TEST_F(Frames, AFrameIsTheSameWhateverCameBeforeIt) {
  EXPECT_EQ(Render(kRich, "a%d.png").code, 0);
  EXPECT_EQ(Render(kRich, "b%d.png", "--frames 11,3-9:2,4-10:2,1,0-2 --quiet").code, 0);
  EXPECT_EQ(Render(kRich, "c%d.png", "--jobs 3 --quiet").code, 0);
  ExpectSame("a", "b", 0, 11);
  ExpectSame("a", "c", 0, 11);
  std::string raw;
  for (int frame = 0; frame < 12; ++frame) {
    const std::string alone = "--layer --frames " + std::to_string(frame);
    EXPECT_EQ(Render(kRich, "d" + std::to_string(frame) + ".png", alone).code, 0);
    const Picture picture = ReadPng(folder_ / ("a" + std::to_string(frame) + ".png"));
    raw.append(reinterpret_cast<const char*>(picture.Bytes()), 60U * 40U * 4U);
  }
  ExpectSame("a", "d", 0, 11);
  EXPECT_EQ(Render(kRich, "-", "--raw --frames 0-11").out, raw);
  EXPECT_EQ(Render(kRich, "-", "--raw --frames 0-11 --jobs 2").out, raw);
  const std::string unordered = "--raw --frames 11,0,2,5,8,9,10,1";
  EXPECT_EQ(Render(kRich, "-", unordered + " --jobs 1").out,
            Render(kRich, "-", unordered + " --jobs 2").out);

  // What is seen, in the middle of the layer: Up is in front; it is half transparent and another
  // image; it is off.
  const auto colour = [&](const char* file) { return ReadPng(folder_ / file).At(30, 20); };
  EXPECT_EQ(colour("a0.png"), (standin::Rgba{200, 30, 30, 255}));
  EXPECT_NEAR(colour("a3.png").blue, 0.5 * 200 + 0.5 * 30, 2);
  EXPECT_EQ(colour("a5.png"), (standin::Rgba{30, 160, 30, 255}));
}

TEST_F(Frames, MakesWhatIsMissing) {
  ASSERT_EQ(Render(kRich, "a%d.png").code, 0);
  ASSERT_EQ(Render(kRich, "b%d.png", "--frames 0-9").code, 0);
  const std::string whole = ReadWholeFile(folder_ / "b4.png");
  standin::WriteWholeFile(folder_ / "b4.png", std::string_view(whole).substr(0, whole.size() / 2));
  WritePng(folder_ / "b6.png", Picture(59, 40));
  const Outcome outcome = Render(kRich, "b%d.png", "--missing --progress json");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find(": 4 frames of 60x40 in "), std::string::npos) << outcome.out;
  for (const int frame : {4, 6, 10, 11}) {
    EXPECT_NE(outcome.err.find("{\"frame\":" + std::to_string(frame) + ","), std::string::npos)
        << outcome.err;
  }
  ExpectSame("a", "b", 0, 11);

  const Outcome failed =
      Render(R"({"size": [60, 40], "bones": [], "frames": {"count": 12}})", "b%d.png",
             "--frames 2-11 --missing --scale 1/2 --plugin " + Quoted(TARVO_FAILING_PLUGIN));
  EXPECT_EQ(failed.code, 3);
  EXPECT_NE(failed.err.find("b%d.png: missing 2-11\n"), std::string::npos) << failed.err;
}

#ifndef _WIN32  // a POSIX shell sends the signal, and stands in for ffmpeg

TEST_F(Frames, GoesOnAfterAnInterruption) {
  const std::string scene =
      Moving(300, R"("z": [{"frame": 0, "value": 0}, {"frame": 299, "value": 9}])");
  ASSERT_EQ(Render(scene, "a%d.png", "--quiet --jobs 2").code, 0);
  for (const std::string name : {"b", "c"}) {
    const std::string jobs = name == "c" ? " --jobs 2" : "";
    standin::WriteWholeFile(folder_ / "interrupt.sh",
                            Quoted(TARVO_COMMAND) + " " + Arguments(name + "%d.png", jobs) +
                                " & job=$!\nuntil [ -e " + Quoted(File(name + "1.png")) +
                                " ]; do sleep 0.01; done\nkill -INT $job; wait $job");
    const Outcome outcome = Shell("sh " + Quoted(File("interrupt.sh")));
    EXPECT_EQ(outcome.code, 130) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(File(name + "299.png")));
    const std::size_t command = outcome.err.find("this goes on:\n");
    ASSERT_NE(command, std::string::npos) << outcome.err;
    const Outcome rest = Shell(
        outcome.err.substr(command + 14, outcome.err.find(".png --", command) - command - 14) +
        ".png --missing" + jobs);
    EXPECT_EQ(rest.code, 0) << rest.err;
    EXPECT_EQ(rest.out.find("%d.png: 300 frames"), std::string::npos) << rest.out;
    ExpectSame("a", name, 0, 299);
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    EXPECT_NE(entry.path().extension(), ".part") << entry.path();
  }
}

TEST_F(Frames, PassesAMoviesFramesToItsEncoder) {
  const auto install = [this](const std::string& script) {
    standin::WriteWholeFile(folder_ / "ffmpeg", "#!/bin/sh\nfor last; do :; done\n" + script);
    std::filesystem::permissions(folder_ / "ffmpeg", std::filesystem::perms::owner_all);
  };
  const std::string path = "PATH=" + Quoted(folder_.string()) + " ";
  install("exec /bin/cat > \"${last#file:}\"\n");
  for (const std::string jobs : {"--jobs 1", "--jobs 2"}) {
    ASSERT_EQ(Render(kRich, "a.webm", jobs, path).code, 0);
    ASSERT_EQ(Render(kRich, "a.mp4", jobs, path).code, 0);
    const std::string raw = "--raw --frames 0-11";
    EXPECT_EQ(ReadWholeFile(folder_ / "a.webm"), Run(Arguments("-", raw)).out) << jobs;
    EXPECT_EQ(ReadWholeFile(folder_ / "a.mp4"),
              Run(Arguments("-", raw + " --background black")).out)
        << jobs;
  }
  install("exit 7\n");
  ExpectFailure(Arguments("b.gif", ""), 2, "ffmpeg ended with 7", path);
  ExpectFailure(Arguments("b.gif", ""), 4, "install the package ffmpeg", "PATH=/nowhere ");
}

#endif

TEST_F(Frames, RefusesWhatItCannotMake) {
  ASSERT_EQ(Render(kRich, "a%02d.png", "--frames 8-10:2,1").code, 0);
  const std::size_t made = Files();
  for (const char* name : {"a01.png", "a08.png", "a10.png"}) {
    EXPECT_TRUE(std::filesystem::exists(File(name))) << name;
  }
  for (const char* list : {"12", "3-1", "1-", "1,,2", "1,", "0-9:0", "5:2", "1-2-3", "x"}) {
    ExpectFailure(Arguments("b%d.png", std::string("--frames ") + list), 2,
                  "of frames from 0 to 11 expected");
  }
  ExpectFailure(Arguments("b.png", "--frames 0-1"), 2, "name with the frame's number");
  ExpectFailure(Arguments("b%d.gif", ""), 2, "-o: name of PNG files");
  ExpectFailure(Arguments("b.png", "--missing"), 2, "--missing: files of frames");
  ExpectFailure(Arguments("b.png", "--raw"), 2, "--raw: -o -");
  ExpectFailure(Arguments("b%d.png", "--jobs 0"), 2, "--jobs");
  ExpectFailure(Arguments("b%d.png", "--jobs 2 --plugin none.so"), 4, "none.so");
  EXPECT_EQ(Files(), made);
}

}  // namespace
