#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include "sdk/effect.h"

namespace standin {

class DynamicLibrary;

/// A plug-in file that cannot be used; the text names the file and what is wrong with it.
class PluginLoadError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A loaded build of the plug-in; destruction unloads it.
class PluginLibrary {
 public:
  /// Loads the file. Throws PluginLoadError when it cannot be loaded or does not export
  /// `EntryPointFunc`.
  explicit PluginLibrary(const std::string& path);
  PluginLibrary(PluginLibrary&&) noexcept;
  PluginLibrary& operator=(PluginLibrary&&) noexcept;
  ~PluginLibrary();

  /// Valid as long as this object exists.
  [[nodiscard]] PF_EntryPoint EntryPoint() const { return entryPoint_; }
  /// The path it was loaded from, made absolute.
  [[nodiscard]] const std::string& Path() const { return path_; }

 private:
  std::string path_;
  std::unique_ptr<DynamicLibrary> library_;
  PF_EntryPoint entryPoint_;
};

}  // namespace standin
