#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "bytes.h"
#include "plugin.h"

/// \file
/// The plug-in's view of its host, and calls of all host operations.

namespace independent_abi {

/// What one hosting of the plug-in is about.
struct Session {
  Observer observer;
  std::vector<std::string> findings;
  std::vector<std::int32_t> commands;
  int nested = 0;  ///< commands that came inside of another

  void* effect = nullptr;  ///< the instance, as the host names it
  const void* utilities = nullptr;
  const void* basic = nullptr;
  void* const* parameters = nullptr;
  void* globalData = nullptr;
  void* sequenceData = nullptr;
};

extern Session session;

/// A 32-bit field of a record.
struct Number {
  std::size_t byte;
  std::int32_t value;
  const char* name;
};

/// Notes a finding unless it holds.
void Note(bool holds, const char* what, const char* file, int line);
#define HOLDS(...) Note((__VA_ARGS__), #__VA_ARGS__, __FILE_NAME__, __LINE__)

/// Notes every field that has another value.
void Expect(const void* record, const std::string& what, std::initializer_list<Number> numbers);
/// Notes unless just this operation of the host ran since the last look, with this among its
/// arguments and without a violation.
void ExpectOperation(const std::string& name, const std::string& argument = "");

/// Acquires and releases as the interface asks; both are checked.
const void* Acquire(const std::string& suite, std::int32_t version);
void Release(const std::string& suite, std::int32_t version);

/// A new handle of the host's.
void* NewHandle(std::uint64_t size);
void DisposeOfHandle(void* handle);

/// Calls every slot of every suite and of the callbacks: those that the host fills with arguments
/// that it takes, the others to see what it says of them.
void CallEverything(const void* interaction);

}  // namespace independent_abi
