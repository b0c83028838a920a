#include <dlfcn.h>

#include "standin/loader/dynamic_library.h"
#include "standin/loader/plugin_library.h"

namespace standin {

DynamicLibrary::DynamicLibrary(const std::string& path)
    : handle_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (handle_ == nullptr) {
    throw PluginLoadError("cannot load the plug-in " + path + ": " + dlerror());
  }
}

DynamicLibrary::~DynamicLibrary() { dlclose(handle_); }

void* DynamicLibrary::Find(const char* name) const { return dlsym(handle_, name); }

}  // namespace standin
