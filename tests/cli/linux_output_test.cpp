// What POSIX systems have under a file's name: links, pipes, devices, modes, owners, disks that
// fail.

#include <filesystem>
#include <string>

#include <sys/stat.h>
#include <unistd.h>

#include "tests/cli/frames_fixture.h"
#include "tests/cli/linux_preload.h"

namespace {

using tarvo::ReadPng;
using tarvo::ReadWholeFile;

constexpr const char* kAboutCheck = " --only Commands.AboutShowsNameAndVersion";

class LinuxOutputs : public Frames {
 protected:
  LinuxOutputs() {
    tarvo::WriteWholeFile(folder_ / "scene.json", kHead + R"({"name": "Up", "image": "a", )" +
                                                      kCard + R"(}], "frames": {"count": 3}})");
  }

  [[nodiscard]] std::string Command(const std::string& arguments) const {
    return Quoted(TARVO_COMMAND) + " " + arguments;
  }

  [[nodiscard]] struct stat Status(const std::string& name) const {
    struct stat status {};
    EXPECT_EQ(lstat(File(name).c_str(), &status), 0) << name;
    return status;
  }
};

TEST_F(LinuxOutputs, NeverTakeThePlaceOfWhatSymbolicLinksLeadTo) {
  const std::string image = ReadWholeFile(folder_ / "a.png");
  std::filesystem::create_symlink("a.png", folder_ / "link.png");
  std::filesystem::create_symlink("link.png", folder_ / "f2.png");
  std::filesystem::create_symlink(".", folder_ / "here");
  std::filesystem::create_symlink("g0.png", folder_ / "g1.png");
  for (const std::string output : {"link.png", "here/a.png", "here/link.png", "f%d.png"}) {
    ExpectFailure(Arguments(output, ""), 2, "would take the place of a file that was read");
  }
  ExpectFailure("diff " + Quoted(File("b.png")) + " " + Quoted(File("link.png")) + " -o " +
                    Quoted(File("a.png")),
                2, "would take the place of a file that was read");
  ExpectFailure(Arguments("g%d.png", ""), 2, "is a link to the same file as");
  const std::string output = Quoted(File("o.png"));
  for (const std::string& command :
       {Arguments("o.png", ""), "sheet " + Quoted(File("scene.json")) + " -o " + output}) {
    const Outcome log = Shell("( " + Command(command) + " >>" + output + " )");
    EXPECT_EQ(log.code, 2) << command;
    EXPECT_NE(log.err.find("the file that standard output is redirected to"), std::string::npos)
        << log.err;
  }
  EXPECT_EQ(ReadWholeFile(folder_ / "a.png"), image);
  EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link.png"));
}

TEST_F(LinuxOutputs, NeverTakeThePlaceOfTheProgramsThemselves) {
  std::filesystem::copy_file(TARVO_COMMAND, folder_ / "tarvo");
  const Outcome alone =
      Shell("cd " + Quoted(folder_.string()) + " && ./tarvo check " + Quoted(TARVO_PLUGIN));
  EXPECT_EQ(alone.code, 4) << alone.err;
  EXPECT_NE(alone.err.find("tarvo-check-worker: missing; "), std::string::npos) << alone.err;
  std::filesystem::copy_file(TARVO_CHECK_WORKER, folder_ / "tarvo-check-worker");
  const std::string check =
      " --only Commands.AboutShowsNameAndVersion " + Quoted(TARVO_PLUGIN) + " --junit ";
  for (const std::string& command :
       {"./tarvo check" + check + "tarvo-check-worker", "./tarvo-check-worker" + check + "tarvo"}) {
    const Outcome outcome = Shell("cd " + Quoted(folder_.string()) + " && " + command);
    EXPECT_EQ(outcome.code, 2) << command << outcome.err;
    EXPECT_NE(outcome.err.find("would take the place of the program"), std::string::npos)
        << outcome.err;
  }
  EXPECT_EQ(std::filesystem::file_size(folder_ / "tarvo"),
            std::filesystem::file_size(TARVO_COMMAND));
}

TEST_F(LinuxOutputs, KeepLinksModeAndOwnerOfWhatTheyReplace) {
  constexpr uid_t kOwner = 1234;
  const bool givesAway = geteuid() == 0;
  std::filesystem::create_directory(folder_ / "sub");
  tarvo::WriteWholeFile(folder_ / "sub" / "o.png", "an older picture");
  std::filesystem::create_symlink("sub/o.png", folder_ / "link.png");
  std::filesystem::create_symlink("sub/new.png", folder_ / "dangling.png");
  if (givesAway) {
    ASSERT_EQ(chown(File("sub/o.png").c_str(), kOwner, kOwner), 0);
  }
  ASSERT_EQ(chmod(File("sub/o.png").c_str(), 0640), 0);
  for (const std::string link : {"link.png", "dangling.png"}) {
    const Outcome outcome = Run(Arguments(link, ""));
    EXPECT_EQ(outcome.code, 0) << outcome.err;
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / link));
    EXPECT_EQ(ReadPng(folder_ / link).width, 44) << link;
  }
  const struct stat status = Status("sub/o.png");
  EXPECT_EQ(status.st_mode & 07777U, 0640U);
  EXPECT_EQ(status.st_uid, givesAway ? kOwner : geteuid());
  EXPECT_EQ(status.st_gid, givesAway ? kOwner : getegid());
  std::filesystem::create_symlink("circle.png", folder_ / "circle.png");
  ExpectFailure(Arguments("circle.png", ""), 2, "symbolic links");
}

TEST_F(LinuxOutputs, WritePipesAndDevicesAsTheyAre) {
  ASSERT_EQ(mkfifo(File("pipe.png").c_str(), 0600), 0);
  std::filesystem::create_symlink("/dev/null", folder_ / "null.png");
  std::filesystem::create_symlink("pipe.png", folder_ / "f1.png");
  std::filesystem::create_symlink("pipe.png", folder_ / "o.gif");
  const Outcome piped =
      Shell("( cat <" + Quoted(File("pipe.png")) + " >" + Quoted(File("read.png")) + " & " +
            Command(Arguments("pipe.png", "")) + "; code=$?; wait; exit $code )");
  EXPECT_EQ(piped.code, 0) << piped.err;
  EXPECT_EQ(ReadPng(folder_ / "read.png").width, 44);
  EXPECT_TRUE(S_ISFIFO(Status("pipe.png").st_mode));
  EXPECT_EQ(Run(Arguments("null.png", "")).code, 0);
  EXPECT_TRUE(S_ISLNK(Status("null.png").st_mode));
  const Outcome report =
      Shell("( " + Command(std::string("check --junit /dev/stdout") + kAboutCheck) + " | cat )");
  EXPECT_NE(report.out.find("</testsuite>"), std::string::npos) << report.out << report.err;
  // What is read back, or written at several places, is a file.
  for (const std::string output : {"f%d.png", "f%d.png --missing", "o.gif"}) {
    const Outcome outcome =
        Run("render " + Quoted(File("scene.json")) + " -o " + folder_.string() + "/" + output,
            "timeout 60 ");
    EXPECT_EQ(outcome.code, 2) << output << outcome.err;
  }
  EXPECT_FALSE(std::filesystem::exists(File("f0.png"))) << "frames before a name that is refused";
}

TEST_F(LinuxOutputs, SayThatStandardOutputIsLost) {
  const std::string scene = Quoted(File("scene.json"));
  const std::string picture = " " + Quoted(File("a.png"));
  ASSERT_EQ(mkfifo(File("pipe").c_str(), 0600), 0);
  const std::string pipe = Quoted(File("pipe"));
  const std::string pipeWithoutReader = "exec 3<>" + pipe + " 4>" + pipe + " 3>&-; ";
  const struct {
    std::string arguments;
    std::string told;  // on standard error
  } cases[] = {
      {"--help", ""},
      {"--version", ""},
      {"render --help", ""},
      {Arguments("o.png", ""), "o.png: 44x22, "},
      {Arguments("o%d.png", ""), "o%d.png: 3 frames"},
      {Arguments("-", ""), ""},
      {Arguments("-", "--raw --frames 0-2 --jobs 2"), ""},
      {"sheet " + scene + " -o " + Quoted(File("s.png")), "s.png: "},
      {"explain " + scene, ""},
      {"flips " + scene, ""},
      {"diff" + picture + picture, "the same"},
      {"diff" + picture + " " + Quoted(File("b.png")), "pixels"},
      {"check --list", ""},
      {std::string("check") + kAboutCheck, "conformant: 1 check passed"},
      {std::string("check --json") + kAboutCheck, "conformant: 1 check passed"},
  };
  for (const auto& [arguments, told] : cases) {
    for (const std::string output : {" >/dev/full", " >&-", " >&4"}) {
      const Outcome outcome = Shell("( " + pipeWithoutReader + Command(arguments) + output + " )");
      EXPECT_EQ(outcome.code, 4) << arguments << output << "\n" << outcome.err;
      EXPECT_NE(outcome.err.find("standard output cannot be written"), std::string::npos)
          << arguments << output << "\n"
          << outcome.err;
      EXPECT_NE(outcome.err.find(told), std::string::npos) << arguments << "\n" << outcome.err;
    }
  }
  EXPECT_EQ(ReadPng(folder_ / "o.png").width, 44) << "what was made stays";
  EXPECT_EQ(Shell("( " + Command(Arguments("q.png", "--quiet")) + " >&- )").code, 0);
}

TEST_F(LinuxOutputs, AReportThatIsMissingIsNoSuccess) {
  const std::string check = std::string("check") + kAboutCheck + " --junit ";
  ExpectFailure(check + "/proc/checks.xml", 2, "/proc/checks.xml: cannot be written: ");
  for (const std::string& plugin : {std::string(), " --plugin " + Quoted(TARVO_FAILING_PLUGIN)}) {
    const Outcome outcome = Run(check + "/dev/full" + plugin);
    EXPECT_EQ(outcome.code, 5) << outcome.err;
    EXPECT_NE(outcome.out.find(plugin.empty() ? "\nconformant: " : "\nnot conformant: "),
              std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.err.find("/dev/full: cannot be written: No space left on device; the report"),
              std::string::npos)
        << outcome.err;
  }
}

/// Reading the memory of a process fails at its first byte, which no process has.
TEST_F(LinuxOutputs, AReadThatFailsIsNoEndOfTheFile) {
  const std::string unreadable = "/proc/self/mem: cannot be read: Input/output error";
  ExpectFailure("render /proc/self/mem -o " + Quoted(File("x.png")), 2, unreadable);
  ExpectFailure("diff /proc/self/mem " + Quoted(File("a.png")), 2, unreadable);
}

TEST_F(LinuxOutputs, AreOnTheDiskItselfBeforeSuccessIsSaid) {
  tarvo::WriteWholeFile(folder_ / "o.png", "an older picture");
  tarvo::WriteWholeFile(folder_ / "f0.png", "an older frame");
  for (const std::string what : {"file", "folder"}) {
    const std::string before = Preload("PRELOAD_SYNC", what);
    for (const std::string output : {"o.png", "f%d.png"}) {
      ExpectFailure(Arguments(output, "--frames 0"), 2, "cannot be written: Input/output error",
                    before);
    }
    if (what == "file") {
      EXPECT_EQ(ReadWholeFile(folder_ / "o.png"), "an older picture");
    }
    EXPECT_EQ(Run(Arguments("o.png", "--no-sync"), before).code, 0);
  }
}

}  // namespace
