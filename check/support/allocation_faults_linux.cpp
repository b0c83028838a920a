#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <string_view>

#include <execinfo.h>
#include <link.h>

#include "check/support/allocation_faults.h"
#include "check/support/plugin_under_check.h"

namespace {

/// Where a loaded file lies in memory.
struct Place {
  [[nodiscard]] bool Holds(const void* address) const {
    const auto at = reinterpret_cast<std::uintptr_t>(address);
    return begin <= at && at < end;
  }

  std::uintptr_t begin = 0;
  std::uintptr_t end = 0;
};

Place PlaceOf(const dl_phdr_info& file) {
  Place place{.begin = UINTPTR_MAX, .end = 0};
  for (int i = 0; i < file.dlpi_phnum; ++i) {
    const ElfW(Phdr)& part = file.dlpi_phdr[i];
    if (part.p_type != PT_LOAD) {
      continue;
    }
    const std::uintptr_t begin = file.dlpi_addr + part.p_vaddr;
    place.begin = begin < place.begin ? begin : place.begin;
    place.end = begin + part.p_memsz > place.end ? begin + part.p_memsz : place.end;
  }
  return place;
}

/// The file that holds an address.
Place PlaceAround(const void* address) {
  struct Search {
    const void* address;
    Place found;
  } search{address, {}};
  dl_iterate_phdr(
      [](dl_phdr_info* file, std::size_t /*size*/, void* data) {
        auto& wanted = *static_cast<Search*>(data);
        const Place place = PlaceOf(*file);
        if (!place.Holds(wanted.address)) {
          return 0;
        }
        wanted.found = place;
        return 1;
      },
      &search);
  return search.found;
}

/// The C++ library's own file.
Place PlaceOfCppLibrary() {
  Place found;
  dl_iterate_phdr(
      [](dl_phdr_info* file, std::size_t /*size*/, void* data) {
        if (std::string_view(file->dlpi_name).find("libstdc++") == std::string_view::npos) {
          return 0;
        }
        *static_cast<Place*>(data) = PlaceOf(*file);
        return 1;
      },
      &found);
  return found;
}

struct Plan {
  bool isOn = false;
  std::uint64_t left = 0;  ///< allocations of the plug-in's to the one that fails
  bool fired = false;
  Place plugin;
  Place cppLibrary;
};

/// Of this thread alone: other threads are OpenGL's.
thread_local Plan gPlan;

/// True iff the plug-in asks for the memory, be it through the C++ library. `asker` is the address
/// to which the operator returns.
bool PluginAsks(const void* asker) {
  std::array<void*, 16> stack{};
  const int depth = backtrace(stack.data(), static_cast<int>(stack.size()));
  const auto end = stack.begin() + depth;
  const auto first = std::find(stack.begin(), end, asker);
  const auto outside = std::find_if(
      first, end, [](const void* address) { return !gPlan.cppLibrary.Holds(address); });
  return outside != end && gPlan.plugin.Holds(*outside);
}

/// Counts one allocation; true iff it is to fail.
bool IsDue(const void* asker) {
  if (!PluginAsks(asker) || --gPlan.left != 0) {
    return false;
  }
  gPlan.isOn = false;
  gPlan.fired = true;
  return true;
}

void* Allocate(std::size_t size, const void* asker) {
  if (gPlan.isOn && IsDue(asker)) {
    throw std::bad_alloc();
  }
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) {
    throw std::bad_alloc();
  }
  return memory;
}

}  // namespace

// The program's own operators, which the files that it loads use too. All of a kind are here: where
// a sanitizer brings the others, what one gave would come back to another.

void* operator new(std::size_t size) { return Allocate(size, __builtin_return_address(0)); }
void* operator new[](std::size_t size) { return Allocate(size, __builtin_return_address(0)); }

void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return std::malloc(size == 0 ? 1 : size);  // the plug-in has no use for it
}

void* operator new[](std::size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
void operator delete(void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }
void operator delete[](void* memory, const std::nothrow_t& /*tag*/) noexcept { std::free(memory); }

namespace check {

const char* AllocationFaults::Obstacle() {
  return PluginFile().empty() ? "the plug-in is linked in: its allocations cannot be attributed"
                              : nullptr;
}

AllocationFaults::AllocationFaults(std::uint64_t n) {
  std::array<void*, 2> warmUp{};  // the first use of the call stack loads what it needs
  backtrace(warmUp.data(), static_cast<int>(warmUp.size()));
  gPlan = {.isOn = true,
           .left = n,
           .fired = false,
           .plugin = PlaceAround(reinterpret_cast<const void*>(PluginUnderCheck())),
           .cppLibrary = PlaceOfCppLibrary()};
}

AllocationFaults::~AllocationFaults() { gPlan = {}; }

bool AllocationFaults::Fired() const { return gPlan.fired; }

}  // namespace check
