#pragma once

#include <string>

#include "sdk/effect.h"

namespace check {

/// Loads the build that all checks of this process speak to; in place of one that was loaded
/// before. Throws standin::PluginLoadError.
void UsePlugin(const std::string& file);
/// The checks speak to a plug-in that is linked into the program.
void UseEntryPoint(PF_EntryPoint entryPoint);
/// Unloads the build and loads it anew. REQUIRES: UsePlugin; no host that uses it exists.
void ReloadPlugin();

/// REQUIRES: UsePlugin or UseEntryPoint.
PF_EntryPoint PluginUnderCheck();
/// The file it was loaded from; empty if it is linked in.
std::string PluginFile();

}  // namespace check
