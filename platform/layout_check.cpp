// The sizes that callers write into records and that the window system checks.
#include <window_system.h>

static_assert(sizeof(WNDCLASSEXA) == 80);
static_assert(sizeof(PIXELFORMATDESCRIPTOR) == 40);
static_assert(sizeof(SYSTEMTIME) == 16);
