#pragma once

#include <window_system.h>

#include "plugin/render/area.h"

namespace plugin {

/// Defines level 0 of a rectangle texture from packed rows of host pixels, or without contents if
/// `pixels` is null, and sets both filters to `filter`. Leaves the texture bound on the active
/// unit.
///
/// Host pixels lie in memory as alpha, red, green, blue, and are handed over as alpha, blue, green,
/// red: red and blue change places, and the readback with the same format changes them back. A
/// format changed in one direction must be changed in the other.
void DefineRectangleTexture(GLuint texture, A_long width, A_long height, const void* pixels,
                            GLint filter);

/// Reads an area of the render target into packed rows of host pixels; row 0 of the target is row 0
/// of the picture.
void ReadRenderTarget(const Area& area, void* pixels);

/// Copies an area of the render target to the first pixels of a rectangle texture, which is bound
/// on the active unit then.
void CopyRenderTarget(const Area& area, GLuint texture);

}  // namespace plugin
