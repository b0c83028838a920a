#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// \file
/// A plug-in that declares the host's interface a second time, as bytes: offsets, slots, sizes and
/// numbers. The real plug-in and the stand-in host are compiled with the same records, so an error
/// in those is the same on both sides and no other test sees it. This folder shares none of them:
/// it is compiled without the source tree on its include path.

namespace independent_abi {

/// How the plug-in sees, past the interface, what the host made of a call.
struct Observer {
  /// The operations that ran since the last call of this function: "name(arguments)".
  std::function<std::vector<std::string>()> operations;
  /// The violations that the host noted since the last call of this function.
  std::function<std::vector<std::string>()> violations;
};

/// Forgets everything; the plug-in is to be hosted from here on.
void Begin(Observer observer);
/// What was not as declared here, one line each.
const std::vector<std::string>& Findings();
/// The commands that came, oldest first.
const std::vector<std::int32_t>& Commands();

/// Checks every command's records, and at the first general command calls every slot of every
/// table. Does nothing once something was not as declared: what follows would be a crash. What it
/// expects of the project and answers to each command is in plugin.cpp and calls.cpp and, as the
/// host sees it, in independent_abi_test.cpp.
std::int32_t EntryPoint(std::int32_t command, void* in, void* out, void* const* parameters,
                        void* output, void* extra);

}  // namespace independent_abi
