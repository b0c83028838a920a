#pragma once

#include <optional>
#include <string>
#include <vector>

#include "bench/bare_gl.h"
#include "standin/scene.h"

namespace bench {

/// A scene whose frame time is of interest.
struct BenchCase {
  std::string name;
  standin::Scene (*makeScene)();
  /// None: the frame that the plug-in asks for.
  std::optional<Canvas> canvas;
};

/// Every case, in the order of their lines.
const std::vector<BenchCase>& BenchCases();

}  // namespace bench
