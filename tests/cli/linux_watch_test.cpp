// `tarvo watch`, run by a POSIX shell that saves files while it runs.

#include <string>

#include "tests/cli/frames_fixture.h"

namespace {

TEST_F(Frames, WatchFollowsSavesAndKeepsTheLastGoodPicture) {
  const std::string still = kHead + R"({"name": "Up", "image": "a", )" + kCard + "}]}";
  tarvo::WriteWholeFile(folder_ / "scene.json", still);
  tarvo::WriteWholeFile(folder_ / "watch.sh", "cd " + Quoted(folder_.string()) + "\n" + "cp " +
                                                  Quoted(TARVO_COMMAND) + " tarvo\n" +
                                                  "plugin=" + Quoted(TARVO_PLUGIN) +
                                                  R"(
env --default-signal=INT ./tarvo watch scene.json -o out.png --plugin "$plugin" 2>said & job=$!
await() { tries=0; until "$@" >made 2>&1; do sleep 0.02; tries=$((tries + 1))
  if [ $tries -gt 1500 ]; then echo "in vain: $*" >>said; kill $job; exit 99; fi; done; }
changed() { ! cmp out.png "$1"; }
await test -e out.png
rm tarvo  # as a build replaces it
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
cp out.png third.png
sed 's/40, 10/30, 10/' good.json >new.json
touch -r scene.json new.json
mv new.json scene.json
await changed third.png
kill -INT $job; wait $job
)");
  const Outcome outcome = Shell("sh " + Quoted(File("watch.sh")));
  const std::string said = tarvo::ReadWholeFile(folder_ / "said");
  EXPECT_EQ(outcome.code, 0) << said;
  EXPECT_NE(outcome.out.find("kept\n"), std::string::npos) << outcome.out;
  EXPECT_NE(outcome.out.find("out.png: "), std::string::npos) << outcome.out;
  EXPECT_NE(said.find("scene.json: line 1"), std::string::npos) << said;
  const tarvo::Rgba middle = tarvo::ReadPng(folder_ / "second.png").At(20, 20);
  EXPECT_EQ(middle.green, 160) << "the image that was saved is not the one that is drawn";
}

// The command is stopped while something happens, so that the interrupt comes before it has seen
// it.
TEST_F(Frames, WatchMakesALostPictureAgainAndSaysWhenItCouldNot) {
  tarvo::WriteWholeFile(folder_ / "scene.json", Moving(2, ""));
  tarvo::WriteWholeFile(folder_ / "watch.sh",
                        "cd " + Quoted(folder_.string()) + "\ntarvo=" + Quoted(TARVO_COMMAND) + R"(
await() { tries=0; until "$@" >made 2>&1; do sleep 0.02; tries=$((tries + 1))
  if [ $tries -gt 1500 ]; then echo "in vain: $*"; kill $job; exit 99; fi; done; }
start() { rm -f told; env --default-signal=INT "$tarvo" watch scene.json -o out.png 2>said >told & job=$!
  await made 1; }
made() { test $(grep -c '^out.png: ' told) -ge $1; }
start
cp out.png good.png
rm out.png
await made 2
printf damaged >out.png
await made 3
cmp out.png good.png
kill -INT $job; wait $job; echo code $?
for harm in 'rm out.png' 'cp b.png out.png' 'touch scene.json' 'cp b.png a.png'; do
  start
  kill -STOP $job; $harm; kill -INT $job; kill -CONT $job; wait $job; echo code $?
  grep interrupted said
done
)");
  const Outcome outcome = Shell("sh " + Quoted(File("watch.sh")));
  std::string expected = "code 0\n";
  for (int harm = 0; harm < 4; ++harm) {
    expected += "code 130\nout.png: interrupted before the picture was made again\n";
  }
  EXPECT_EQ(outcome.out, expected) << outcome.err;
}

TEST_F(Frames, WatchRefusesWhatItCouldNeverMake) {
  tarvo::WriteWholeFile(folder_ / "scene.json", Moving(2, ""));
  const std::string watch = "watch " + Quoted(File("scene.json")) + " -o ";
  for (const std::string output : {"f%d.png", "f.gif", "-"}) {
    ExpectFailure(watch + output, 2, "name of one picture");
  }
}

}  // namespace
