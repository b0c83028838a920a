#pragma once

#include "sdk/effect.h"

namespace plugin {

/// Whether the host is asked to show the message to the user at once.
enum class Display { kNo, kYes };

/// Writes `text` into the output record's message with the host's own sprintf. The text serves as
/// the format: it must not contain a percent sign, nor more than 255 characters.
void WriteMessage(const PF_InData& in, PF_OutData& out, const char* text, Display display);

/// Stops the command if a framework operation failed: where `code` is not 0, the text that
/// `textOf(code)` gives becomes the message and PF_Err_INTERNAL_STRUCT_DAMAGED is thrown.
template <class Code, class TextOf>
void Require(const PF_InData& in, PF_OutData& out, Code code, TextOf textOf,
             Display display = Display::kNo) {
  if (code == Code{}) {
    return;
  }
  WriteMessage(in, out, textOf(code), display);
  throw PF_Err{PF_Err_INTERNAL_STRUCT_DAMAGED};
}

}  // namespace plugin
