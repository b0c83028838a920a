#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "base/files/file_path.h"
#include "sdk/effect_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

constexpr std::size_t kLongestPath = 260;
constexpr std::size_t kLongestText = 4096;

/// Room behind an address: what is left of `return_msg` when it points there, else the longest
/// text.
std::size_t RoomBehind(const Core& core, const A_char* buffer) {
  if (core.currentOut != nullptr) {
    const A_char* begin = core.currentOut->return_msg;
    const A_char* end = begin + sizeof core.currentOut->return_msg;
    if (buffer >= begin && buffer < end) {
      return static_cast<std::size_t>(end - buffer);
    }
  }
  return kLongestText;
}

int PutText(Core& core, A_char* buffer, const A_char* text, std::string_view who) {
  const std::size_t length = std::strlen(text);
  const std::size_t room = RoomBehind(core, buffer);
  if (length >= room) {
    core.Refuse(who, "a text of " + std::to_string(length) +
                         " characters for return_msg, which takes " + std::to_string(room - 1));
  }
  const std::size_t kept = std::min(length, room - 1);
  std::memcpy(buffer, text, kept);
  buffer[kept] = '\0';
  return static_cast<int>(kept);
}

/// The host's sprintf takes any arguments, which no template can pass on.
int Sprintf(A_char* buffer, const A_char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  const int written = CallOperation<int>(
      "sprintf", FailurePoint::kThrowOnly,
      [&](Core& core) {
        if (buffer == nullptr || format == nullptr) {
          core.Refuse("sprintf", "null");
          return 0;
        }
        std::array<A_char, kLongestText> text{};
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized): it was started outside.
        std::vsnprintf(text.data(), text.size(), format, arguments);
        return PutText(core, buffer, text.data(), "sprintf");
      },
      [&](const ArgumentFormatter& words) { return words(format); });
  va_end(arguments);
  return written;
}

A_char* Strcpy(Core& core, A_char* to, const A_char* from) {
  if (to == nullptr || from == nullptr) {
    core.Refuse("strcpy", "null");
    return to;
  }
  PutText(core, to, from, "strcpy");
  return to;
}

void PutWidePath(const std::string& path, void* data) {
  std::array<char16_t, kLongestPath> wide{};
  tarvo::FilePath(path).Get().u16string().copy(wide.data(), wide.size() - 1);
  std::memcpy(data, wide.data(), sizeof wide);
}

void PutPath(const std::string& path, void* data) {
  std::array<A_char, kLongestPath> narrow{};
  path.copy(narrow.data(), narrow.size() - 1);
  std::memcpy(data, narrow.data(), narrow.size());
}

PF_Err GetPlatformData(Core& core, PF_ProgPtr effect, PF_PlatDataID which, void* data) {
  if (effect != core.pluginRef && core.Instance(effect, "get_platform_data") == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (data == nullptr || which != PF_PlatData_EXE_FILE_PATH_W) {
    return core.Refuse("get_platform_data", "subject " + std::to_string(which) +
                                                "; this host answers 7, the plug-in's path, only");
  }
  if (core.options.pathIsWide) {
    PutWidePath(core.options.pluginPath, data);
  } else {
    PutPath(core.options.pluginPath, data);
  }
  return PF_Err_NONE;
}

}  // namespace

void AddUtilityCallbacks(Core& core) {
  using CopyText = Operation<"strcpy", Strcpy, FailurePoint::kThrowOnly>;
  core.utilities.ansi.sprintf = Sprintf;
  core.utilities.ansi.strcpy = CopyText::Call;
  core.utilities.get_platform_data = Operation<"get_platform_data", GetPlatformData>::Call;

  auto& ansi = core.suites.Add<PF_ANSICallbacksSuite1>("PF ANSI Suite", 1);
  ansi.sprintf = Sprintf;
  ansi.strcpy = CopyText::Call;
}

}  // namespace standin
