#pragma once

#include <cstddef>

#include "sdk/basic_types.h"

/// \file
/// The host's basic suite: how every other suite is acquired and released.

using SPErr = std::int32_t;
using SPBoolean = std::int32_t;

struct SPBasicSuite {
  /// Stores the suite of that name and registered version in `suite`; each success is answered by
  /// one ReleaseSuite with the same name and version.
  SPErr (*AcquireSuite)(const char* name, std::int32_t version, const void** suite);
  SPErr (*ReleaseSuite)(const char* name, std::int32_t version);
  SPBoolean (*IsEqual)(const char* token1, const char* token2);
  SPErr (*AllocateBlock)(std::size_t size, void** block);
  SPErr (*FreeBlock)(void* block);
  SPErr (*ReallocateBlock)(void* block, std::size_t newSize, void** newBlock);
  SPErr (*Undefined)();
};
SDK_SIZE(SPBasicSuite, 56);
SDK_SLOT(SPBasicSuite, AcquireSuite, 0);
SDK_SLOT(SPBasicSuite, ReleaseSuite, 1);
