// Movies by the real ffmpeg, where a POSIX shell limits the size of files and spoils what was made.

#include <cstdint>
#include <filesystem>
#include <set>
#include <string>

#include "tests/cli/frames_fixture.h"

namespace {

using tarvo::ReadWholeFile;

constexpr const char* kFormats[] = {"gif", "webm", "mp4"};

/// ffmpeg and ffprobe are installed by scripts/set-up.sh.
class Movies : public Frames {
 protected:
  void SetUp() override {
    ASSERT_EQ(Shell("(command -v ffmpeg && command -v ffprobe)").code, 0)
        << "no ffmpeg here: install the package ffmpeg";
  }
};

/// The largest file that a user may write simulates a full disk: what goes beyond is refused.
TEST_F(Movies, AFullDiskLeavesTheOldMovie) {
  for (const std::string format : kFormats) {
    const std::string movie = "a." + format;
    const Outcome made = Render(kRich, movie);
    ASSERT_EQ(made.code, 0) << made.err;
    const std::string whole = ReadWholeFile(folder_ / movie);
    const std::uintmax_t last = (whole.size() - 1) / 512;
    for (const std::uintmax_t blocks : std::set<std::uintmax_t>{0, 1, last / 2, last}) {
      const std::string limit = "trap '' XFSZ; ulimit -f " + std::to_string(blocks) + "; ";
      const Outcome outcome =
          Shell("( " + limit + Quoted(TARVO_COMMAND) + " " + Arguments(movie, "") + " )");
      // Where no file may have a byte, not even memory can be shared with the plug-in's process.
      EXPECT_EQ(outcome.code, blocks == 0 ? 4 : 2) << format << " in " << blocks << " blocks\n"
                                                   << outcome.err;
      EXPECT_EQ(outcome.out, "") << format;
      EXPECT_EQ(ReadWholeFile(folder_ / movie), whole) << format << " in " << blocks << " blocks";
    }
  }
}

/// An encoder that loses the end of its file and says that all is well.
TEST_F(Movies, AMovieThatIsNotWholeIsNoSuccess) {
  const std::string encoder = Shell("command -v ffmpeg").out;
  Install("ffmpeg", "for last; do :; done\nfile=\"${last#file:}\"\n" +
                        encoder.substr(0, encoder.size() - 1) +
                        " \"$@\" || exit\n"
                        "truncate -s $(( $(stat -c %s \"$file\") * 2 / 3 )) \"$file\"\n");
  tarvo::WriteWholeFile(folder_ / "scene.json", kRich);
  for (const std::string format : kFormats) {
    tarvo::WriteWholeFile(folder_ / ("a." + format), "an older movie");
    ExpectFailure(Arguments("a." + format, ""), 2, "a." + format + ": ",
                  "PATH=" + Quoted(folder_.string()) + ":\"$PATH\" ");
    EXPECT_EQ(ReadWholeFile(folder_ / ("a." + format)), "an older movie");
  }
}

TEST_F(Movies, AGifHasAtMostAHundredFramesASecond) {
  const std::string fast =
      kHead + R"({"name": "Up", "image": "a", )" + kCard + R"(}], "frames": {"count": 3, "rate": )";
  EXPECT_EQ(Render(fast + "100}}", "a.gif").code, 0);
  EXPECT_EQ(Render(fast + "101}}", "a.webm").code, 0);
  ExpectFailure(Arguments("b.gif", ""), 2, "at most 100 frames a second of a .gif expected");
}

}  // namespace
