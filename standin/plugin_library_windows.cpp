#include <filesystem>
#include <utility>

#include <window_system.h>

#include "standin/file_path.h"
#include "standin/plugin_library.h"

namespace standin {

struct PluginLibrary::Module {
  explicit Module(const std::filesystem::path& path) : handle(LoadLibraryW(path.c_str())) {
    if (handle == nullptr) {
      throw PluginLoadError("cannot load the plug-in " + path.string() + ": error " +
                            std::to_string(GetLastError()));
    }
  }
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;
  ~Module() { FreeLibrary(handle); }

  HMODULE handle;
};

PluginLibrary::PluginLibrary(const std::string& path) {
  const std::filesystem::path whole = std::filesystem::absolute(FilePath(path).Get());
  path_ = whole.string();
  module_ = std::make_unique<Module>(whole);
  const FARPROC address = GetProcAddress(module_->handle, "EntryPointFunc");
  entryPoint_ = reinterpret_cast<PF_EntryPoint>(reinterpret_cast<void*>(address));
  if (entryPoint_ == nullptr) {
    throw PluginLoadError("the library " + path_ +
                          " is no plug-in: it does not export EntryPointFunc");
  }
}

PluginLibrary::PluginLibrary(PluginLibrary&&) noexcept = default;
PluginLibrary& PluginLibrary::operator=(PluginLibrary&&) noexcept = default;
PluginLibrary::~PluginLibrary() = default;

}  // namespace standin
