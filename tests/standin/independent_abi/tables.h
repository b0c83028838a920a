#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

/// \file
/// The host's tables of function pointers: which there are, how long they are, and which operation
/// is in which slot.

namespace independent_abi {

/// A function pointer in a table: its offset, how the host calls the place ("8 of AEGP Stream Suite
/// 4"), and the operation's name (empty where it is not known).
struct Callback {
  std::size_t byte;
  std::string place;
  std::string operation;
};

struct Suite {
  std::string name;
  std::int32_t version;  ///< as registered
  std::vector<Callback> slots;
};

std::vector<Suite> Suites();
std::vector<Callback> BasicCallbacks();
std::vector<Callback> InteractionCallbacks();
std::vector<Callback> UtilityCallbacks();

}  // namespace independent_abi
