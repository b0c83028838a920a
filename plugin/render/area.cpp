#include "plugin/render/area.h"

#include <window_system.h>

namespace plugin {

void LimitDrawing(const Area& area) {
  glEnable(GL_SCISSOR_TEST);  // a clear ignores the viewport and would cover the whole target
  glScissor(area.x, area.y, area.width, area.height);
}

}  // namespace plugin
