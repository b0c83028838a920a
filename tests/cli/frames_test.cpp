#include <cstddef>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/cli/frames_fixture.h"

namespace {

using tarvo::Picture;
using tarvo::ReadPng;
using tarvo::ReadWholeFile;

TEST_F(Frames, AreNotMadeAsOnePictureByAnUnsupportedPattern) {
  for (const std::string output : {"a%0300d.png", "a%x.png", "a.####.png"}) {
    const Outcome outcome = Render(Moving(3, ""), output);
    EXPECT_EQ(outcome.code, 2);
    EXPECT_NE(outcome.err.find("name with the frame's number"), std::string::npos) << outcome.err;
    EXPECT_EQ(Render(Moving(3, ""), output, "--frames 0").code, 0)
        << "one picture, if one is meant";
  }
}

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
      // Up sends once more as it becomes inactive; Down takes over the first slider pair, whose
      // change makes it send.
      {R"("active": [{"frame": 0, "value": true}, {"frame": 20, "value": false}])",
       " 6 messages, 2 images\n"},
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
    raw.append(reinterpret_cast<const char*>(picture.Bytes()), std::size_t{60} * 40 * 4);
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
  EXPECT_EQ(colour("a0.png"), (tarvo::Rgba{200, 30, 30, 255}));
  EXPECT_NEAR(colour("a3.png").blue, 0.5 * 200 + 0.5 * 30, 2);
  EXPECT_EQ(colour("a5.png"), (tarvo::Rgba{30, 160, 30, 255}));
}

TEST_F(Frames, MakesWhatIsMissing) {
  ASSERT_EQ(Render(kRich, "a%d.png").code, 0);
  ASSERT_EQ(Render(kRich, "b%d.png", "--frames 0-9").code, 0);
  const std::string whole = ReadWholeFile(folder_ / "b4.png");
  tarvo::WriteWholeFile(folder_ / "b4.png", std::string_view(whole).substr(0, whole.size() / 2));
  WritePng(folder_ / "b6.png", Picture(59, 40));
  std::string changed = ReadWholeFile(folder_ / "b7.png");
  changed[changed.size() / 2] ^= 1;  // still a PNG to a decoder that believes every byte
  tarvo::WriteWholeFile(folder_ / "b7.png", changed);
  const Outcome outcome = Render(kRich, "b%d.png", "--missing --progress json");
  EXPECT_EQ(outcome.code, 0);
  EXPECT_NE(outcome.out.find(": 5 frames of 60x40 in "), std::string::npos) << outcome.out;
  for (const int frame : {4, 6, 7, 10, 11}) {
    EXPECT_NE(outcome.err.find("{\"frame\":" + std::to_string(frame) + ","), std::string::npos)
        << outcome.err;
  }
  ExpectSame("a", "b", 0, 11);

  const Outcome failed =
      Render(kEmptyScene, "b%d.png",
             "--frames 2-11 --missing --scale 1/2 --plugin " + Quoted(TARVO_FAILING_PLUGIN));
  EXPECT_EQ(failed.code, 3);
  EXPECT_NE(failed.err.find("b%d.png: missing 2-11\n"), std::string::npos) << failed.err;
}

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
  ExpectFailure(Arguments("b%d.gif", ""), 2, "or of a movie (.gif, .webm, .mp4) expected");
  ExpectFailure(Arguments("b.####.png.txt", ""), 2, "name of a picture (out.png)");
  ExpectFailure(Arguments("a.png", ""), 2, "a.png would take the place of a file that was read");
  ExpectFailure(Arguments("b.png", "--frames \"\""), 2, "text expected, none given");
  ExpectFailure(Arguments("b.png", "--missing"), 2, "--missing: files of frames");
  ExpectFailure(Arguments("b.png", "--raw"), 2, "--raw: -o -");
  ExpectFailure(Arguments("b%d.png", "--jobs 0"), 2, "--jobs");
  ExpectFailure(Arguments("b%d.png", "--jobs 2 --plugin none.so"), 4, "none.so");
  EXPECT_EQ(Files(), made);
}

}  // namespace
