#include "standin/command/process.h"

#include <array>

namespace standin {

bool Process::Read(void* bytes, std::size_t size) {
  char* next = static_cast<char*>(bytes);
  while (size > 0) {
    const std::size_t count = ReadSome(next, size);
    if (count == 0) {
      return false;
    }
    next += count;
    size -= count;
  }
  return true;
}

std::string Process::ReadAll() {
  std::string output;
  std::array<char, 4096> part{};
  while (const std::size_t count = ReadSome(part.data(), part.size())) {
    output.append(part.data(), count);
  }
  return output;
}

}  // namespace standin
