#include "plugin/render/readback.h"

#include <algorithm>
#include <cstring>

#include "plugin/host/host_memory.h"
#include "plugin/render/pixel_rows.h"
#include "plugin/render/rectangle_texture.h"

namespace plugin {

bool ReadBack(Frame& frame, const Tile& tile) {
  HostMemory buffer(frame.host.Suites(), PackedBytes(tile.width, tile.height));
  auto* const pixels = buffer ? static_cast<A_u_char*>(buffer.Lock()) : nullptr;
  if (pixels == nullptr) {
    return false;
  }
  ReadRenderTarget(WholeOf(tile), pixels);

  PF_EffectWorld& world = frame.scratchWorld.Get();
  const A_HandleSize rowBytes = PackedBytes(tile.width, 1);
  // None without a world, and none of a tile beyond a world that is smaller than it was asked for.
  const A_long columns = std::clamp(world.width - tile.x, 0, tile.width);
  const A_long rows = columns == 0 ? 0 : std::clamp(world.height - tile.y, 0, tile.height);
  for (A_long row = 0; row < rows; ++row) {
    A_u_char* const destination = RowOf(*frame.in.utils, world, tile.y + row);
    if (destination == nullptr) {
      return false;
    }
    std::memcpy(destination + PackedBytes(tile.x, 1),
                pixels + static_cast<A_HandleSize>(row) * rowBytes, PackedBytes(columns, 1));
  }
  return true;
}

}  // namespace plugin
