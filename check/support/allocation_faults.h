#pragma once

#include <cstdint>

namespace check {

/// Makes memory run out in the plug-in: the n-th allocation that the plug-in itself (not the host,
/// not OpenGL) makes with C++'s `new` fails. The call stack shows which module allocates.
class AllocationFaults {
 public:
  /// Null, or why allocations cannot be attributed here.
  static const char* Obstacle();

  /// From now until the end of the object the `n`-th allocation of the plug-in's (from 1) fails.
  explicit AllocationFaults(std::uint64_t n);
  AllocationFaults(const AllocationFaults&) = delete;
  AllocationFaults& operator=(const AllocationFaults&) = delete;
  ~AllocationFaults();

  /// Whether it has.
  [[nodiscard]] bool Fired() const;
};

}  // namespace check
