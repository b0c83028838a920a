#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// \file
/// Text of unknown origin (names in a scene, messages of a plug-in) as a terminal and as XML take
/// it.

namespace tarvo {

/// Escapes what a terminal would obey or could not show: control characters (U+0000 to U+001F,
/// U+007F to U+009F) and bytes that are not UTF-8 become `\x1B`, one for each byte. All other text
/// stays.
std::string ForTerminal(std::string_view text);

/// The same for text of several lines: line feeds stay.
std::string LinesForTerminal(std::string_view text);

/// Text for the content or an attribute of an XML 1.0 document in UTF-8. Control characters that
/// XML cannot hold become `?`, bytes that are not UTF-8 and U+FFFE and U+FFFF become U+FFFD.
std::string ForXml(std::string_view text);

/// Text for a message: cut to `longest` bytes, at the start of a character, and then ended by "…".
std::string Shortened(std::string_view text, std::size_t longest);

}  // namespace tarvo
