#include "tests/cli/command_fixture.h"

Outcome CommandTest::Run(const std::string& arguments, const std::string& before) const {
  return Shell(before + Quoted(TARVO_COMMAND) + " " + arguments);
}
