// Processes and signals as a POSIX shell shows them: what is left of them in each kind of end.

#include <filesystem>
#include <string>

#include "tests/cli/frames_fixture.h"
#include "tests/cli/linux_preload.h"

namespace {

// `await CONDITION` until it holds, but not for good; `gone PID` once it has ended; `pid_of WORDS`
// of the line in `said` that tells it.
const std::string kFunctions = R"(
await() { tries=0; until "$@" >awaited 2>&1; do sleep 0.02; tries=$((tries + 1))
  if [ $tries -gt 1500 ]; then echo "in vain: $*"; exit 99; fi; done; }
gone() { [ -n "$1" ] && ! kill -0 "$1"; }
pid_of() { sed -n "s/.*$1 process \([0-9]*\).*/\1/p" said; }
parts() { ls | grep '\.part$'; }
)";

class Processes : public Frames {
 protected:
  Processes() { tarvo::WriteWholeFile(folder_ / "scene.json", kEmptyScene); }

  /// Runs a script in the folder, in which $tarvo is the command and `said` none of an earlier one.
  [[nodiscard]] Outcome Script(const std::string& text) const {
    tarvo::WriteWholeFile(folder_ / "script.sh",
                          "cd " + Quoted(folder_.string()) + "\nrm -f said\ntarvo=" +
                              Quoted(TARVO_COMMAND) + "\n" + kFunctions + text);
    return Shell("sh " + Quoted(File("script.sh")));
  }
};

TEST_F(Processes, AnIgnoredSigchldHidesNoFailure) {
  InstallStoringEncoder("exit 7\n");
  const struct {
    std::string arguments;
    std::string end;
  } cases[] = {
      {"render scene.json -o m.gif --plugin " + Quoted(TARVO_PRINTING_PLUGIN),
       "code 2\nm.gif: ffmpeg ended with exit code 7\n"},
      {"render scene.json -o f%d.png --jobs 2 --quiet --plugin " + Quoted(TARVO_LEAKING_PLUGIN),
       "code 3\n"},
  };
  for (const auto& [arguments, end] : cases) {
    const Outcome outcome = Script("PATH=.:$PATH\nenv --ignore-signal=CHLD \"$tarvo\" " +
                                   arguments + " 2>said; echo code $?; grep 'ended with' said\n");
    EXPECT_EQ(outcome.out, end) << arguments;
  }
  EXPECT_FALSE(std::filesystem::exists(File("m.gif")));
}

TEST_F(Processes, EndingTarvoEndsAHangingPlugin) {
  const std::string commands[] = {"render scene.json --frames 5 -o one.png",
                                  "render scene.json -o f%d.png --jobs 2",
                                  "explain scene.json --frame 5", "sheet scene.json -o sheet.png"};
  const struct {
    const char* signal;
    int code;
  } ends[] = {{"KILL", 137}, {"INT", 130}, {"TERM", 130}};
  for (const std::string& command : commands) {
    for (const auto& [signal, code] : ends) {
      // A killed process removes nothing: it may have been writing a frame that was made before.
      const Outcome outcome = Script(
          "env --default-signal=INT \"$tarvo\" " + command +
          (command[0] == 's' ? " --frames 5" : "") + " --plugin " + Quoted(TARVO_HANGING_PLUGIN) +
          " 2>said & job=$!\nawait grep 'hanging in process' said\n" + "kill -" + signal +
          " $job\nwait $job\necho code $?\nawait gone $(pid_of 'hanging in')\n" +
          (code == 137 ? "rm -f *.part; " : "") + "parts || echo clean\n");
      EXPECT_EQ(outcome.out, "code " + std::to_string(code) + "\nclean\n")
          << command << " " << signal << "\n"
          << outcome.err;
    }
  }
}

// As a shell reports a program that Ctrl-C ended.
TEST_F(Processes, AnExitCodeOf130IsNoSignal) {
  const Outcome outcome =
      Script("TARVO_TEST_EXITS_WITH_130=1 \"$tarvo\" render scene.json -o f%d.png --plugin " +
             Quoted(TARVO_EXITING_PLUGIN) + " 2>said; echo code $?; grep -o 'ended.*130)' said\n");
  EXPECT_EQ(outcome.out,
            "code 3\nended the program in the render command, frame 5 (exit code 130)\n");
}

TEST_F(Processes, AnInterruptWhileTheEncoderIsTriedOutIsOne) {
  InstallStoringEncoder();
  Install("ffprobe", "echo probing in process $$ >&2\nexec /bin/sleep 60\n");
  const Outcome outcome = Script(
      "PATH=.:$PATH env --default-signal=INT \"$tarvo\" render scene.json -o m.gif 2>said & "
      "job=$!\n"
      "await grep 'probing in process' said\nkill -INT $job\nwait $job\necho code $?\n"
      "grep interrupted said\nparts || echo clean\n");
  EXPECT_EQ(outcome.out, "code 130\ninterrupted; m.gif is not complete\nclean\n") << outcome.err;
}

// The pipe is full when the command comes to it, and its reader leaves once the command has it open
// for writing alone, unlike the shell that starts it.
TEST_F(Processes, AReaderThatLeavesAPipeIsAFailureWithASentence) {
  for (const std::string command : {"render scene.json --frames 0", "sheet scene.json"}) {
    const Outcome outcome = Script(
        "rm -f p.png; mkfifo p.png; exec 3<>p.png; head -c 65536 /dev/zero >&3\n"
        "\"$tarvo\" " +
        command +
        " -o p.png 2>said 3>&- & job=$!\nis_open() { ls -l /proc/$job/fd | grep '^l-wx.*p.png'; }\n"
        "await is_open; exec 3>&-; wait $job; echo code $?; cat said\n");
    EXPECT_EQ(outcome.out, "code 2\np.png: cannot be written: Broken pipe\n") << command;
  }
}

TEST_F(Processes, SignalsThatTheCallerIgnoresAreIgnored) {
  const Outcome outcome = Script(
      "env --ignore-signal=HUP \"$tarvo\" render scene.json --frames 5 -o one.png --plugin " +
      Quoted(TARVO_HANGING_PLUGIN) +
      " 2>said & job=$!\nawait grep 'hanging in process' said\nkill -HUP $job\nsleep 0.2\n"
      "kill -0 $job && echo there\nkill -TERM $job\nwait $job\necho code $?\n");
  EXPECT_EQ(outcome.out, "there\ncode 130\n");
}

TEST_F(Processes, ACrashAfterTheLastFrameIsAFailure) {
  for (const std::string output : {"f%d.png --quiet", "- --raw"}) {
    const Outcome outcome =
        Script("{ \"$tarvo\" render scene.json -o " + output + " --frames 0-11 --plugin " +
               Quoted(TARVO_ENDING_PLUGIN) +
               " 2>said; echo code $? >code; } | { sleep 0.3; cat >made; }\ncat code said\n");
    EXPECT_EQ(outcome.out.find("code 3\n"), 0U) << outcome.out;
    EXPECT_NE(outcome.out.find("the plug-in crashed while it was unloaded"), std::string::npos)
        << outcome.out;
  }
}

TEST_F(Processes, ASlowReaderIsNotReportedAsAHang) {
  for (const std::string wait : {"sleep 2.5", "for i in $(seq 27); do sleep 0.07; $part; done"}) {
    const Outcome outcome = Script(
        "part='dd bs=65536 count=1'\n"
        "{ \"$tarvo\" render scene.json -o f%d.png --quiet --time-limit 1 --plugin " +
        Quoted(TARVO_PRINTING_PLUGIN) +
        " 2>&1; echo code $? >code; } | { { until $part | grep -q '?'; do true; done; " + wait +
        "; cat; } >said 2>statistics; }\ncat code\n");
    EXPECT_EQ(outcome.out, "code 0\n") << wait;
  }
}

TEST_F(Processes, APluginThatCallsTheHostForeverCanBeInterrupted) {
  const Outcome outcome = Script(
      "mkfifo pipe\n\"$tarvo\" render scene.json --frames 5 -o one.png --trace --plugin " +
      Quoted(TARVO_CALLING_PLUGIN) +
      " 2>pipe & job=$!\n{ i=0; while [ $i -lt 3000 ] && kill -0 $job; do dd bs=4096 count=1; "
      "i=$((i + 1)); sleep 0.02; done; cat; } <pipe >said 2>&1 &\nawait test -s said\n"
      "sleep 0.3\nkill -TERM $job\nawait gone $job\nwait $job\necho code $?\n");
  EXPECT_EQ(outcome.out, "code 130\n");
}

TEST_F(Processes, OutOfMemoryInAWorkerExitsWith4) {
  for (const std::string command :
       {"render scene.json --frames 5 -o one.png", "explain scene.json --frame 5"}) {
    const Outcome outcome = Script("\"$tarvo\" " + command + " --plugin " +
                                   Quoted(TARVO_THROWING_PLUGIN) + "; echo code $?\n");
    EXPECT_EQ(outcome.out, "code 4\n") << command;
    EXPECT_NE(outcome.err.find("tarvo: out of memory in the render command, frame 5\n"),
              std::string::npos)
        << outcome.err;
  }
}

TEST_F(Processes, ALimitEndsTheWholeGroupAndDoesNotAwaitAPipeHeldOpen) {
  for (const std::string command :
       {"render scene.json --frames 5 -o one.png", "explain scene.json --frame 5"}) {
    const Outcome outcome = Script("\"$tarvo\" " + command + " --time-limit 1 --plugin " +
                                   Quoted(TARVO_FORKING_PLUGIN) +
                                   " 2>said; echo code $?\nawait gone $(pid_of 'member is')\n" +
                                   "kill $(pid_of 'outsider is') && echo not awaited\n");
    EXPECT_EQ(outcome.out, "code 3\nnot awaited\n") << command << outcome.err;
  }
}

TEST_F(Processes, BytesThatThePluginWritesToTheChannelAreAFailure) {
  for (const std::string output : {"one.png --frames 5", "f%d.png", "f%d.png --jobs 2", "-"}) {
    const std::string frames = output == "-" ? " --raw --frames 5" : "";
    const Outcome outcome =
        Script("\"$tarvo\" render scene.json -o " + output + frames + " --plugin " +
               Quoted(TARVO_SCRIBBLING_PLUGIN) + " >made; code=$?; wc -c <made; exit $code\n");
    EXPECT_EQ(outcome.code, 3) << output << outcome.err;
    EXPECT_EQ(outcome.out, "0\n") << output;
    EXPECT_NE(outcome.err.find("the channel from the plug-in's process was damaged"),
              std::string::npos)
        << outcome.err;
  }
}

TEST_F(Processes, AreRefusedWithASentenceWhenThereAreNoMore) {
  const std::string commands[] = {"render scene.json -o f%d.png --quiet --plugin ",
                                  "render scene.json -o f%d.png --quiet --jobs 2 --plugin ",
                                  "check --only Rendering.* --jobs 3 "};
  for (const std::string& command : commands) {
    for (const std::string kind : {"THREADS", "PROCESSES"}) {
      for (const int allowed : {0, 1}) {
        const bool isEnough = kind == "PROCESSES" && allowed == 1 &&
                              command.find("jobs 2") == std::string::npos && command[0] == 'r';
        if (isEnough) {  // a single worker is all that this command starts
          continue;
        }
        const Outcome outcome = Script(Preload("PRELOAD_" + kind, std::to_string(allowed)) +
                                       "\"$tarvo\" " + command + Quoted(TARVO_PRINTING_PLUGIN) +
                                       " 2>said; echo code $?; grep ' cannot be started: ' said\n");
        EXPECT_EQ(outcome.out.find("code 4\n"), outcome.out.find("code "))
            << kind << allowed << command << outcome.out;
        EXPECT_NE(outcome.out.find(" cannot be started: "), std::string::npos)
            << kind << allowed << command;
      }
    }
  }
}

TEST_F(Processes, AnInterruptRemovesTheTemporaryFileOfWhateverIsWritten) {
  InstallStoringEncoder();
  tarvo::WritePng(folder_ / "a.png", tarvo::Picture(8, 8));
  const std::string plugin = " --plugin " + Quoted(TARVO_PRINTING_PLUGIN);
  const std::string commands[] = {
      "render scene.json -o one.png" + plugin, "sheet scene.json -o sheet.png" + plugin,
      "diff a.png a.png -o diff.png", "render scene.json -o m.gif" + plugin,
      "check --only Commands.AboutShowsNameAndVersion --junit checks.xml " + Quoted(TARVO_PLUGIN)};
  for (const std::string& command : commands) {
    for (const std::string signal : {"TERM", "HUP"}) {
      // A movie's interrupt is noted while it is made; the second one ends it.
      const Outcome outcome = Script(
          "PATH=.:$PATH\n" + Preload("PRELOAD_RENAMES", "0") + "\"$tarvo\" " + command +
          " >made 2>said & job=$!\nawait grep 'blocking in rename' said\nawait parts\nwhile kill "
          "-" +
          signal +
          " $job; do sleep 0.1; done 2>ended\nwait $job; echo code $?\nparts || echo clean\n");
      const std::string code = signal == "TERM" ? "143" : "129";
      EXPECT_EQ(outcome.out, "code " + code + "\nclean\n") << command << outcome.err;
    }
  }
}

}  // namespace
