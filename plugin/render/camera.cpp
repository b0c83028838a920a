#include "plugin/render/camera.h"

#include <algorithm>
#include <array>
#include <cmath>

#include <window_system.h>

namespace plugin {
namespace {

constexpr double kEyeDistance = 3000.0;
constexpr double kNearPlane = 10.0;
constexpr double kFarPlane = 30000.0;
/// 360 / pi: twice the angle, in degrees, of an arc tangent in radians.
constexpr double kTwiceDegreesPerRadian = 114.591559026164;

/// A length cut into parts of equal size, but for the last one. No sum leaves 32 bits, whatever the
/// length.
struct Parts {
  A_long whole;
  A_long part;  ///< above 0

  [[nodiscard]] A_long Count() const { return whole <= 0 ? 0 : (whole - 1) / part + 1; }
  [[nodiscard]] A_long Start(A_long index) const { return index * part; }
  [[nodiscard]] A_long Size(A_long index) const { return std::min(part, whole - Start(index)); }
};

/// Whether OpenGL takes the whole output as a viewport.
bool FitsViewport(const Frame& frame) {
  std::array<GLint, 2> largest{};
  glGetIntegerv(GL_MAX_VIEWPORT_DIMS, largest.data());
  return frame.outWidth <= largest[0] && frame.outHeight <= largest[1];
}

/// The viewport keeps the whole output's size and is moved by the tile's corner: every vertex then
/// keeps its place to the last bit, and tiles meet without a seam. (In very large outputs a pixel
/// on a piece's very edge may still fall to the other side.)
void MoveViewport(const Frame& frame, const Tile& tile) {
  glViewport(-tile.x, -tile.y, frame.outWidth, frame.outHeight);
}

/// For outputs beyond the largest viewport: magnifies the tile in the projection instead.
void PickTile(const Frame& frame, const Tile& tile) {
  glViewport(0, 0, tile.width, tile.height);
  std::array<GLint, 4> whole{0, 0, frame.outWidth, frame.outHeight};
  gluPickMatrix(tile.x + 0.5 * tile.width, tile.y + 0.5 * tile.height, tile.width, tile.height,
                whole.data());
}

void SetProjection(const Frame& frame, const Tile& tile) {
  glMatrixMode(GL_PROJECTION);
  glLoadIdentity();
  if (FitsViewport(frame)) {
    MoveViewport(frame, tile);
  } else {
    PickTile(frame, tile);
  }
  const double width = frame.outWidth;
  const double height = frame.outHeight;
  gluPerspective(kTwiceDegreesPerRadian * std::atan(height / (2.0 * kEyeDistance)), width / height,
                 kNearPlane, kFarPlane);
}

void SetModelView(const Frame& frame) {
  glMatrixMode(GL_MODELVIEW);
  glLoadIdentity();
  const double x = 0.5 * frame.outWidth;
  const double y = 0.5 * frame.outHeight;
  gluLookAt(x, y, kEyeDistance, x, y, 0.0, 0.0, 1.0, 0.0);
  glTranslatef(static_cast<float>(frame.in.output_origin_x),
               static_cast<float>(frame.in.output_origin_y), 0.0F);
  glTranslatef(static_cast<float>(frame.in.pre_effect_source_origin_x),
               static_cast<float>(frame.in.pre_effect_source_origin_y), 0.0F);
}

}  // namespace

std::vector<Tile> TilesOf(A_long outWidth, A_long outHeight, A_long targetWidth,
                          A_long targetHeight) {
  std::vector<Tile> tiles;
  if (targetWidth <= 0 || targetHeight <= 0) {
    return tiles;
  }
  const Parts columns{.whole = outWidth, .part = targetWidth};
  const Parts rows{.whole = outHeight, .part = targetHeight};
  for (A_long row = 0; row < rows.Count(); ++row) {
    for (A_long column = 0; column < columns.Count(); ++column) {
      tiles.push_back({.x = columns.Start(column),
                       .y = rows.Start(row),
                       .width = columns.Size(column),
                       .height = rows.Size(row)});
    }
  }
  return tiles;
}

void AimCamera(const Frame& frame, const Tile& tile) {
  SetProjection(frame, tile);
  SetModelView(frame);
}

}  // namespace plugin
