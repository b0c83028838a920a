#include <filesystem>
#include <utility>

#include <dlfcn.h>

#include "standin/plugin_library.h"

namespace standin {

struct PluginLibrary::Module {
  explicit Module(const std::string& path) : handle(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr) {
      throw PluginLoadError("cannot load the plug-in " + path + ": " + dlerror());
    }
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() { dlclose(handle); }

  void* handle;
};

PluginLibrary::PluginLibrary(const std::string& path)
    : path_(std::filesystem::absolute(path).string()) {
  module_ = std::make_unique<Module>(path_);
  entryPoint_ = reinterpret_cast<PF_EntryPoint>(dlsym(module_->handle, "EntryPointFunc"));
  if (entryPoint_ == nullptr) {
    throw PluginLoadError("the library " + path_ +
                          " is no plug-in: it does not export EntryPointFunc");
  }
}

PluginLibrary::PluginLibrary(PluginLibrary&&) noexcept = default;
PluginLibrary& PluginLibrary::operator=(PluginLibrary&&) noexcept = default;
PluginLibrary::~PluginLibrary() = default;

}  // namespace standin
