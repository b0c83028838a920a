#pragma once

#include <cstddef>
#include <initializer_list>
#include <optional>
#include <vector>

namespace standin {

/// Bytes `offset` to `offset` + `size` − 1 of a record.
struct ByteRange {
  std::size_t offset = 0;
  std::size_t size = 0;
};

/// A copy of a record's bytes, to detect later whether it was written to.
class Snapshot {
 public:
  /// Null gives an empty snapshot, which nothing differs from.
  Snapshot(const void* record, std::size_t size);
  /// The offset of the first byte that differs now, outside the ranges that may; none if all agree.
  [[nodiscard]] std::optional<std::size_t> FirstChange(
      const void* record, std::initializer_list<ByteRange> mayChange = {}) const;

 private:
  std::vector<unsigned char> bytes_;
};

}  // namespace standin
