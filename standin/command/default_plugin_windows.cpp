#include <array>
#include <filesystem>

#include <windows.h>

#include "standin/command/default_plugin.h"

namespace standin {

std::string DefaultPlugin() {
  std::array<wchar_t, 32'768> program{};
  GetModuleFileNameW(nullptr, program.data(), static_cast<DWORD>(program.size()));
  const std::filesystem::path folder = std::filesystem::path(program.data()).parent_path();
  return (folder / "Tarvo_overlaps_manager.aex").string();
}

}  // namespace standin
