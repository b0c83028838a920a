#include "standin/plugin_library.h"

#include <filesystem>

#include "standin/dynamic_library.h"
#include "standin/file_path.h"

namespace standin {

PluginLibrary::PluginLibrary(const std::string& path)
    : path_(std::filesystem::absolute(FilePath(path).Get()).string()),
      library_(std::make_unique<DynamicLibrary>(path_)),
      entryPoint_(reinterpret_cast<PF_EntryPoint>(library_->Find("EntryPointFunc"))) {
  if (entryPoint_ == nullptr) {
    throw PluginLoadError("the library " + path_ +
                          " is no plug-in: it does not export EntryPointFunc");
  }
}

PluginLibrary::PluginLibrary(PluginLibrary&&) noexcept = default;
PluginLibrary& PluginLibrary::operator=(PluginLibrary&&) noexcept = default;
PluginLibrary::~PluginLibrary() = default;

}  // namespace standin
