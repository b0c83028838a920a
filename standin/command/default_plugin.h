#pragma once

#include <string>

namespace standin {

/// The plug-in that stands beside this program's own file, whether it is there or not.
std::string DefaultPlugin();

}  // namespace standin
