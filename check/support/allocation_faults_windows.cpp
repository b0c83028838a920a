#include "check/support/allocation_faults.h"

namespace check {

const char* AllocationFaults::Obstacle() {
  return "on Windows a plug-in brings its own allocation functions, out of this program's reach";
}

AllocationFaults::AllocationFaults(std::uint64_t /*n*/) {}

AllocationFaults::~AllocationFaults() = default;

bool AllocationFaults::Fired() const { return false; }

}  // namespace check
