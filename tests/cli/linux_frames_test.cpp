// Animations where a POSIX shell sends the signal, and stands in for ffmpeg.

#include <filesystem>
#include <string>

#include "tests/cli/frames_fixture.h"
#include "tests/cli/linux_preload.h"

namespace {

using tarvo::ReadWholeFile;

TEST_F(Frames, GoesOnAfterAnInterruption) {
  const std::string scene =
      Moving(300, R"("z": [{"frame": 0, "value": 0}, {"frame": 299, "value": 9}])");
  ASSERT_EQ(Render(scene, "a%d.png", "--quiet --jobs 2").code, 0);
  for (const std::string name : {"b", "c"}) {
    const std::string jobs = name == "c" ? " --jobs 2" : "";
    tarvo::WriteWholeFile(folder_ / "interrupt.sh",
                          "env --default-signal=INT " + Quoted(TARVO_COMMAND) + " " +
                              Arguments(name + "%d.png", jobs) + " & job=$!\nuntil [ -e " +
                              Quoted(File(name + "1.png")) +
                              " ]; do sleep 0.01; done\nkill -INT $job; wait $job");
    const Outcome outcome = Shell("sh " + Quoted(File("interrupt.sh")));
    EXPECT_EQ(outcome.code, 130) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(File(name + "299.png")));
    const std::size_t command = outcome.err.find("to continue:\n");
    ASSERT_NE(command, std::string::npos) << outcome.err;
    const Outcome rest = Shell(
        outcome.err.substr(command + 13, outcome.err.find(".png --", command) - command - 13) +
        ".png --missing" + jobs);
    EXPECT_EQ(rest.code, 0) << rest.err;
    EXPECT_EQ(rest.out.find("%d.png: 300 frames"), std::string::npos) << rest.out;
    ExpectSame("a", name, 0, 299);
  }
  for (const auto& entry : std::filesystem::directory_iterator(folder_)) {
    EXPECT_NE(entry.path().extension(), ".part") << entry.path();
  }
}

TEST_F(Frames, OfTwoVersionsOfASceneAreNotMixed) {
  for (const std::string changed : {"scene.json", "a.png"}) {
    tarvo::WritePng(folder_ / "new", tarvo::Picture(32, 32, {1, 2, 3, 255}));
    if (changed == "scene.json") {
      tarvo::WriteWholeFile(folder_ / "new", kRich + "\n");
    }
    const Outcome outcome =
        Render(kRich, "x%d.png", "--jobs 2",
               Preload("PRELOAD_CHANGE", Quoted(File("new") + ">" + File(changed))));
    EXPECT_EQ(outcome.code, 2) << changed << ": " << outcome.err;
    EXPECT_NE(outcome.err.find("scene.json: it or one of its images changed"), std::string::npos)
        << changed << ": " << outcome.err;
    EXPECT_EQ(outcome.err.find("goes on"), std::string::npos) << outcome.err;
    EXPECT_FALSE(std::filesystem::exists(folder_ / "x0.png"));
  }
}

TEST_F(Frames, PassesAMoviesFramesToItsEncoder) {
  const std::string path = "PATH=" + Quoted(folder_.string()) + " ";
  InstallStoringEncoder();
  for (const std::string jobs : {"--jobs 1", "--jobs 2"}) {
    ASSERT_EQ(Render(kRich, "a.webm", jobs, path).code, 0);
    ASSERT_EQ(Render(kRich, "a.mp4", jobs, path).code, 0);
    const std::string raw = "--raw --frames 0-11";
    EXPECT_EQ(ReadWholeFile(folder_ / "a.webm"), Run(Arguments("-", raw)).out) << jobs;
    EXPECT_EQ(ReadWholeFile(folder_ / "a.mp4"),
              Run(Arguments("-", raw + " --background black")).out)
        << jobs;
  }
  Install("ffmpeg", "exit 7\n");
  ExpectFailure(Arguments("b.gif", ""), 2, "ffmpeg ended with exit code 7", path);
  ExpectFailure(Arguments("b.gif", ""), 4, "install the package ffmpeg", "PATH=/nowhere ");
  std::filesystem::remove(folder_ / "ffprobe");
  ExpectFailure(Arguments("b.gif", ""), 4, "the program ffprobe", path);
}

}  // namespace
