#include "cli/process/console.h"

#include <ostream>

namespace tarvo {

void PrintResult(const Console& console, const std::string& text) {
  if (!(console.out << text << std::flush)) {
    console.err << text;
  }
}

}  // namespace tarvo
