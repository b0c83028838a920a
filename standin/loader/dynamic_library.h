#pragma once

#include <string>

namespace standin {

/// A library file loaded into this process; destruction unloads it.
class DynamicLibrary {
 public:
  /// Throws PluginLoadError, which names the file and the system's reason.
  explicit DynamicLibrary(const std::string& path);
  DynamicLibrary(const DynamicLibrary&) = delete;
  DynamicLibrary& operator=(const DynamicLibrary&) = delete;
  ~DynamicLibrary();

  /// The address of what the library exports under a name; null when it does not.
  [[nodiscard]] void* Find(const char* name) const;

 private:
  void* handle_;
};

}  // namespace standin
