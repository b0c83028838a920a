#include "platform/linux/window_system_faults.h"

WindowSystemFaults gWindowSystemFaults;
