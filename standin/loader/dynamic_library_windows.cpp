#include <window_system.h>

#include "base/files/file_path.h"
#include "standin/loader/dynamic_library.h"
#include "standin/loader/plugin_library.h"

namespace standin {

DynamicLibrary::DynamicLibrary(const std::string& path)
    : handle_(LoadLibraryW(tarvo::FilePath(path).Get().c_str())) {
  if (handle_ == nullptr) {
    throw PluginLoadError("cannot load the plug-in " + path + ": error " +
                          std::to_string(GetLastError()));
  }
}

DynamicLibrary::~DynamicLibrary() { FreeLibrary(static_cast<HMODULE>(handle_)); }

void* DynamicLibrary::Find(const char* name) const {
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

}  // namespace standin
