#pragma once

#include <string>
#include <string_view>

#include "sdk/effect.h"

namespace plugin {

/// The part of a path before its last backslash; all of it if it has none.
std::string FolderOf(std::string_view path);

/// The text of a path as hosts write it: `bytes` of it, zero-terminated, either 8-bit text or
/// UTF-16, which is recognised by a second byte of 0 and returned as UTF-8.
std::string PathText(const unsigned char* bytes, std::size_t size);

/// The folder in which the plug-in's own file lies, empty if the host does not say.
std::string PluginFolder(PF_InData& in);

}  // namespace plugin
