#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

/// \file
/// Records of the host as bytes.

namespace independent_abi {

inline constexpr std::size_t kPointer = 8;
inline constexpr std::uint8_t kCanary = 0x55;

/// The value that lies so many bytes into a record.
template <typename Value>
Value Read(const void* record, std::size_t byte) {
  Value value{};
  std::memcpy(&value, static_cast<const std::uint8_t*>(record) + byte, sizeof value);
  return value;
}

template <typename Value>
void Write(void* record, std::size_t byte, Value value) {
  std::memcpy(static_cast<std::uint8_t*>(record) + byte, &value, sizeof value);
}

/// Writes a text and its terminating zero.
inline void WriteText(void* record, std::size_t byte, const char* text) {
  std::memcpy(static_cast<std::uint8_t*>(record) + byte, text, std::strlen(text) + 1);
}

/// A record of the plug-in's own, and behind it bytes that the host must not write.
template <std::size_t kSize>
struct Record {
  Record() {
    std::memset(bytes, 0, kSize);
    std::memset(bytes + kSize, kCanary, sizeof bytes - kSize);
  }
  [[nodiscard]] bool IsIntactBehind() const {
    for (std::size_t i = kSize; i < sizeof bytes; ++i) {
      if (bytes[i] != kCanary) {
        return false;
      }
    }
    return true;
  }
  [[nodiscard]] char* Text() { return reinterpret_cast<char*>(bytes); }

  alignas(kPointer) std::uint8_t bytes[kSize + 2 * kPointer];
};

/// One slot of a table, as a function.
struct Slot {
  template <typename Result, typename... Arguments>
  Result Call(Arguments... arguments) const {
    return reinterpret_cast<Result (*)(Arguments...)>(Read<void*>(table, byte))(arguments...);
  }

  const void* table;
  std::size_t byte;
};

}  // namespace independent_abi
