#include "plugin/host/process.h"

namespace plugin {

SPBasicSuite* gBasicSuite = nullptr;
AEGP_PluginID gPluginId = 0;
A_u_long gIdleTicks = 0;

}  // namespace plugin
