#pragma once

#include <new>
#include <stdexcept>
#include <string>

namespace tarvo {

/// Memory ran out, and what for: "decoding a picture of 9000 x 9000 pixels".
class OutOfMemory : public std::bad_alloc {
 public:
  // NOLINTNEXTLINE(bugprone-throw-keyword-missing): a member, whatever its type.
  explicit OutOfMemory(const std::string& purpose) : purpose_(purpose) {}

  [[nodiscard]] const char* what() const noexcept override { return purpose_.what(); }

 private:
  std::runtime_error purpose_;  // unlike a string it is copied without memory
};

}  // namespace tarvo
