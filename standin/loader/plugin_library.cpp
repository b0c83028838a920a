#include "standin/loader/plugin_library.h"

#include <filesystem>

#include "base/files/file_path.h"
#include "standin/core/crash_record.h"
#include "standin/loader/dynamic_library.h"

namespace standin {
namespace {

std::unique_ptr<DynamicLibrary> Load(const std::string& path) {
  const CommandNote note(kLoadCommand);
  return std::make_unique<DynamicLibrary>(path);
}

}  // namespace

PluginLibrary::PluginLibrary(const std::string& path)
    : path_(std::filesystem::absolute(tarvo::FilePath(path).Get()).string()),
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
