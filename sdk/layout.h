#pragma once

#include <cstddef>

/// \file
/// The host reads and writes our records as bytes. Every offset that it relies on is asserted right
/// below its declaration, so that one edit corrects the one place where a fact about the host is
/// written.

/// Asserts that `field` lies `bytes` bytes into `record`.
#define SDK_OFFSET(record, field, bytes) \
  static_assert(offsetof(record, field) == (bytes), #record "::" #field " has moved")

/// Asserts that `operation` is the `slot`-th pointer (from 0) of a table of function pointers.
#define SDK_SLOT(table, operation, slot) SDK_OFFSET(table, operation, (slot) * sizeof(void*))

/// Asserts the size of a record in bytes.
#define SDK_SIZE(record, bytes) \
  static_assert(sizeof(record) == (bytes), #record " has another size")

/// Asserts the number of slots of a table of function pointers.
#define SDK_SLOTS(table, count) SDK_SIZE(table, (count) * sizeof(void*))
