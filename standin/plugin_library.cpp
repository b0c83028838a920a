#include "standin/plugin_library.h"

#include <filesystem>

#include "standin/crash_record.h"
#include "standin/dynamic_library.h"
#include "standin/file_path.h"

namespace standin {
namespace {

std::unique_ptr<DynamicLibrary> Load(const std::string& path) {
  const CommandNote note(kLoadCommand);
  return std::make_unique<DynamicLibrary>(path);
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path)
    : path_(std::filesystem::absolute(FilePath(path).Get()).string()),
      library_(Load(path_)),
      entryPoint_(reinterpret_cast<PF_EntryPoint>(library_->Find("EntryPointFunc"))) {
  if (entryPoint_ == nullptr) {
    throw PluginLoadError("the library " + path_ +
                          " is no plug-in: it does not export EntryPointFunc");
  }
}

PluginLibrary::PluginLibrary(PluginLibrary&&) noexcept = default;
PluginLibrary& PluginLibrary::operator=(PluginLibrary&&) noexcept = default;
PluginLibrary::~PluginLibrary() {
  const CommandNote note(kUnloadCommand);
  library_.reset();
}

}  // namespace standin
