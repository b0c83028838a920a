// `tarvo watch`, run by a POSIX shell that saves files under its eyes.

#include <string>

#include "tests/standin/frames_fixture.h"

namespace {

TEST_F(Frames, WatchFollowsSavesAndKeepsTheLastGoodPicture) {
  const std::string still = kHead + R"({"name": "Up", "image": "a", )" + kCard + "}]}";
  standin::WriteWholeFile(folder_ / "scene.json", still);
  standin::WriteWholeFile(folder_ / "watch.sh", "cd " + Quoted(folder_.string()) + "\n" +
                                                    Quoted(TARVO_COMMAND) +
                                                    R"( watch scene.json -o out.png 2>said & job=$!
await() { until "$@" >made 2>&1; do sleep 0.02; done; }
changed() { ! cmp out.png "$1"; }
await test -e out.png
cp out.png first.png
cp scene.json good.json
printf '{"size": ' >scene.json
await grep 'the last good picture stays' said
cmp out.png first.png && echo kept
cp good.json scene.json
cp b.png a.png
await changed first.png
cp out.png second.png
sed 's/50, 10/40, 10/' good.json >scene.json
await changed second.png
kill -INT $job; wait $job
)");
  const Outcome outcome = Shell("sh " + Quoted(File("watch.sh")));
  const std::string said = standin::ReadWholeFile(folder_ / "said");
  EXPECT_EQ(outcome.code, 0) << said;
  EXPECT_NE(outcome.out.find("kept\n"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("out.png: "), std::string::npos) << outcome.out;
  EXPECT_NE(said.find("scene.json: line 1"), std::string::npos) << said;
  const standin::Rgba middle = standin::ReadPng(folder_ / "second.png").At(20, 20);
  EXPECT_EQ(middle.green, 160) << "the image that was saved is not the one that is drawn";
}

TEST_F(Frames, WatchRefusesWhatItCouldNeverMake) {
  standin::WriteWholeFile(folder_ / "scene.json", Moving(2, ""));
  const std::string watch = "watch " + Quoted(File("scene.json")) + " -o ";
  for (const std::string output : {"f%d.png", "f.gif", "-"}) {
    ExpectFailure(watch + output, 2, "name of one picture");
  }
}

}  // namespace
