#include "base/files/file_path.h"

#include <algorithm>
#include <cctype>

namespace tarvo {

std::string EndingOf(const FilePath& file) {
  std::string ending = file.Get().extension().string();
  std::ranges::transform(ending, ending.begin(), [](unsigned char letter) {
    return static_cast<char>(std::tolower(letter));
  });
  return ending;
}

}  // namespace tarvo
