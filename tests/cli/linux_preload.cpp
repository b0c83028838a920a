#include "tests/cli/linux_preload.h"

#include "tests/cli/frames_fixture.h"

std::string Preload(const std::string& variable, const std::string& value) {
  // Address sanitizers want to be the first library; an option tells them that they need not be.
  return variable + "=" + value +
         " ASAN_OPTIONS=\"$ASAN_OPTIONS:verify_asan_link_order=0\" LD_PRELOAD=" +
         Quoted(TARVO_FAULT_PRELOAD) + " ";
}
