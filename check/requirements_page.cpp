#include <fstream>
#include <iostream>
#include <string>

#include "check/run.h"

/// \file
/// Writes the page that lists what a conformant build does, in Markdown, into the file that is its
/// one argument. It runs in the build, so that the page and `tarvo check --list` cannot differ.

namespace {

constexpr const char* kHead = R"(# The requirements

What a conformant build of the plug-in does: each sentence is held by the check of its name, which [`tarvo check`](checking.md)
runs. This page is written by the build.
)";

/// "Suite.Name", without what tells the cases of one check apart.
std::string NameOf(const check::Check& check) { return check.name.substr(0, check.name.find('/')); }

void WriteRequirements(std::ostream& page) {
  std::string latestSuite;
  std::string latestName;
  for (const check::Check& check : check::AllChecks()) {
    const std::string name = NameOf(check);
    const std::string suite = name.substr(0, name.find('.'));
    if (suite != latestSuite) {
      page << "\n## " << suite << "\n\n";
      latestSuite = suite;
    }
    if (name != latestName) {
      page << "- `" << name << "`: " << check.requirement << "\n";
      latestName = name;
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 2) {
    std::cerr << "tarvo-requirements-page: one file expected\n";
    return 2;
  }
  std::ofstream page(argv[1], std::ios::binary);
  page << kHead;
  WriteRequirements(page);
  if (!page.flush()) {
    std::cerr << "tarvo-requirements-page: " << argv[1] << " cannot be written\n";
    return 1;
  }
}
