#include "standin/core/snapshot.h"

#include <algorithm>
#include <cstring>

namespace standin {

Snapshot::Snapshot(const void* record, std::size_t size) {
  if (record != nullptr) {
    const auto* bytes = static_cast<const unsigned char*>(record);
    bytes_.assign(bytes, bytes + size);
  }
}

std::optional<std::size_t> Snapshot::FirstChange(const void* record,
                                                 std::initializer_list<ByteRange> mayChange) const {
  if (bytes_.empty() || std::memcmp(bytes_.data(), record, bytes_.size()) == 0) {
    return std::nullopt;
  }
  const auto* now = static_cast<const unsigned char*>(record);
  for (std::size_t offset = 0; offset < bytes_.size(); ++offset) {
    const bool excepted =
        std::any_of(mayChange.begin(), mayChange.end(), [offset](const ByteRange& range) {
          return offset >= range.offset && offset - range.offset < range.size;
        });
    if (!excepted && bytes_[offset] != now[offset]) {
      return offset;
    }
  }
  return std::nullopt;
}

}  // namespace standin
