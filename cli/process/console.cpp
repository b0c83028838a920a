#include "cli/process/console.h"

#include <ostream>

namespace standin {

void Tell(const Console& console, const std::string& text) {
  if (!(console.out << text << std::flush)) {
    console.err << text;
  }
}

}  // namespace standin
