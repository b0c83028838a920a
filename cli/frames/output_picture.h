#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>

#include "base/files/file_system.h"
#include "base/image/picture.h"

namespace tarvo {

/// An opaque colour for each place of a picture.
using Background = std::function<Rgba(int x, int y)>;

/// The background of one of kBackgroundNames, or of a colour "#rgb" or "#rrggbb"; none for any
/// other text.
std::optional<Background> ReadBackground(const std::string& text);
inline constexpr std::array kBackgroundNames = {"checker", "black", "white", "grey",
                                                "red",     "green", "blue"};

/// All that ReadBackground takes, for descriptions and messages.
std::string BackgroundWords();

/// The part of a picture that lies in the layer's frame, in pixels of the picture: `width` x
/// `height` from the layer's corner; transparent where the picture does not reach.
Picture CropToLayer(const Picture& picture, int width, int height);

/// Writes a PNG file as WritePng does. Throws InputError, which names the file, when it cannot.
void WritePicture(const std::string& file, const Picture& picture, Sync sync);

/// The picture as it looks over a background: opaque everywhere.
Picture Over(const Picture& picture, const Background& background);

}  // namespace tarvo
