// Each row of the page about exit codes, brought about.

#include <string>
#include <vector>

#include "tests/cli/frames_fixture.h"
#include "tests/cli/linux_preload.h"

namespace {

struct Row {
  int code;
  std::string situation;
  std::string line;   ///< of a shell in the folder, where $tarvo is the command
  std::string words;  ///< on standard error
};

const std::string kShortOfMemory = R"(
(printf '{"bones": ['; yes '[],' | head -2000000; echo '[]]}') >many.json
ulimit -v 120000
$tarvo render many.json -o one.png)";

std::string Plugin(const char* file) { return " --plugin " + Quoted(file); }

/// A command that hangs in the plug-in, and what happens to its processes then.
std::string Ended(const std::string& command, const std::string& how) {
  return command + " 2>said & until grep -q 'hanging in' said; do sleep 0.02; done; " + how +
         "; wait $!; code=$?; cat said >&2; exit $code";
}

std::vector<Row> Rows() {
  const std::string render = "$tarvo render scene.json ";
  const std::string one = render + "-o one.png";
  const std::string frame = render + "-o f%d.png --frames 5";
  const std::string hanging = frame + Plugin(TARVO_HANGING_PLUGIN);
  const std::string check = "$tarvo check --only Commands.AboutShowsNameAndVersion ";
  return {
      {0, "all that was asked for was made; two pictures are the same; the plug-in is conformant",
       one + " && $tarvo diff one.png one.png && " + check, ""},
      {1, "two pictures differ", "$tarvo diff a.png b.png", ""},
      {1, "the plug-in is not conformant: it failed a check", check + Quoted(TARVO_FAILING_PLUGIN),
       ""},
      {2, "the command line is wrong", one + " --time-limit nan", "\"nan\" given"},
      {2, "a scene is wrong", "$tarvo render wrong.json -o one.png", "wrong.json: size: "},
      {2, "a file cannot be read, or is not what it should be", "$tarvo diff a.png scene.json",
       "scene.json: PNG file expected"},
      {2, "a file cannot be written", render + "-o missing/one.png", "missing does not exist"},
      {2, "an output would replace a file that the command reads",
       "ln scene.json link.png; " + render + "-o link.png",
       "would take the place of a file that was read"},
      {2, "the encoder of a movie failed, or left a movie that is not whole",
       "PATH=.:$PATH " + render + "-o m.gif", "ffmpeg ended with exit code 7"},
      {3, "the plug-in returned an error", one + Plugin(TARVO_FAILING_PLUGIN),
       "render returned 512: no paint left"},
      {3, "the plug-in broke a rule of its host", one + Plugin(TARVO_LEAKING_PLUGIN),
       "it should have been released"},
      {3, "the plug-in crashed", frame + Plugin(TARVO_CRASHING_PLUGIN), "the plug-in crashed in"},
      {3, "the plug-in hung: a command took longer than `--time-limit`",
       hanging + " --time-limit 0.3", "the plug-in hung in"},
      {3, "the plug-in ended the program", frame + Plugin(TARVO_EXITING_PLUGIN),
       "the plug-in ended the program in"},
      {3, "the channel from the plug-in's process was damaged",
       frame + Plugin(TARVO_SCRIBBLING_PLUGIN),
       "the channel from the plug-in's process was damaged"},
      {4, "the plug-in cannot be loaded", one + Plugin(TARVO_ENTRYLESS_PLUGIN),
       "does not export EntryPointFunc"},
      {4, "there is no OpenGL",
       "export __EGL_VENDOR_LIBRARY_DIRS=/nonexistent __EGL_VENDOR_LIBRARY_FILENAMES=; " + one,
       "could not make an OpenGL context"},
      {4, "memory ran out in `tarvo`", kShortOfMemory, "tarvo: out of memory\n"},
      {4, "memory ran out in the plug-in", frame + Plugin(TARVO_EXHAUSTED_PLUGIN),
       "out of memory: render returned 4"},
      {4, "no process or thread can be started", Preload("PRELOAD_PROCESSES", "0") + one,
       " cannot be started: "},
      {4, "a movie needs a program that is not installed",
       "PATH=/nonexistent " + render + "-o m.gif", "install the package ffmpeg"},
      {4, "standard output cannot be written", one + " >/dev/full",
       "standard output cannot be written"},
      {5, "a process that makes frames was ended from outside",
       Ended(hanging, "kill -KILL $(sed -n 's/.*hanging in process //p' said)"),
       "was ended from outside"},
      {5, "the report of a check cannot be written at its end",
       Preload("PRELOAD_SYNC", "file") + check + "--junit x.xml", "the report is missing"},
      {130, "the user interrupted", Ended(hanging, "kill -TERM $!"),
       "interrupted after 0 of 1 frames"},
  };
}

TEST_F(Frames, EndWithTheCodesOfThePage) {
  tarvo::WriteWholeFile(folder_ / "scene.json", kEmptyScene);
  tarvo::WriteWholeFile(folder_ / "wrong.json", R"({"size": [60], "bones": []})");
  Install("ffmpeg", "exit 7\n");
  std::string table = "| code | when |\n|---|---|\n";
  for (const auto& [code, situation, line, words] : Rows()) {
    SCOPED_TRACE(situation);
    table += "| " + std::to_string(code) + " | " + situation + " |\n";
#if defined(__SANITIZE_ADDRESS__)  // which itself needs more memory than is left
    if (line == kShortOfMemory) {
      continue;
    }
#endif
    tarvo::WriteWholeFile(folder_ / "script.sh",
                          "cd " + Quoted(folder_.string()) +
                              "\nrm -f said\ntarvo=" + Quoted(TARVO_COMMAND) + "\n" + line + "\n");
    const Outcome outcome = Shell("sh " + Quoted(File("script.sh")));
    EXPECT_EQ(outcome.code, code) << outcome.err;
    EXPECT_NE(outcome.err.find(words), std::string::npos) << outcome.err;
  }
  EXPECT_NE(tarvo::ReadWholeFile(TARVO_EXIT_CODES_PAGE).find("\n\n" + table + "\n"),
            std::string::npos)
      << TARVO_EXIT_CODES_PAGE << " must hold this table:\n"
      << table;
}

}  // namespace
