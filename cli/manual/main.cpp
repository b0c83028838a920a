#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

#include "cli/command.h"
#include "cli/manual/completion.h"
#include "cli/manual/man_page.h"

/// \file
/// Writes the manual pages of `tarvo` and its completion scripts for shells. It runs in the build,
/// with the folder that gets them as its one argument; that folder has the form of share/.

namespace tarvo {
namespace {

using Files = std::map<std::filesystem::path, std::string>;

Files ManualFiles(const CommandEntry& program) {
  const std::string version = "tarvo " TARVO_VERSION;
  Files files = {{"man/man1/tarvo.1", ProgramPage(program, version)},
                 {"bash-completion/completions/tarvo", BashCompletion(program)},
                 {"zsh/site-functions/_tarvo", ZshCompletion(program)},
                 {"fish/vendor_completions.d/tarvo.fish", FishCompletion(program)}};
  for (const CommandEntry& command : program.commands) {
    files["man/man1/tarvo-" + command.name + ".1"] = CommandPage(program, command, version);
  }
  return files;
}

void WriteFiles(const std::filesystem::path& folder, const Files& files) {
  for (const auto& [name, text] : files) {
    std::filesystem::create_directories((folder / name).parent_path());
    std::ofstream file(folder / name, std::ios::binary);
    file << text;
    if (!file.flush()) {
      throw std::runtime_error((folder / name).string() + ": cannot be written");
    }
  }
}

void WriteManual(const std::filesystem::path& folder) {
  CLI::App program;
  Work chosen;
  AddCommands(program, chosen);
  WriteFiles(folder, ManualFiles(ReadEntry(program)));
}

}  // namespace
}  // namespace tarvo

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "tarvo-manual: the folder for the files expected\n";
    return 2;
  }
  try {
    tarvo::WriteManual(argv[1]);
    return 0;
  } catch (const std::exception& error) {
    std::cerr << "tarvo-manual: " << error.what() << '\n';
    return 1;
  }
}
