#include "plugin/host/report.h"

namespace plugin {

void WriteMessage(const PF_InData& in, PF_OutData& out, const char* text, Display display) {
  in.utils->ansi.sprintf(out.return_msg, text);
  if (display == Display::kYes) {
    out.out_flags |= PF_OutFlag_DISPLAY_ERROR_MESSAGE;
  }
}

}  // namespace plugin
