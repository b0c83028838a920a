#pragma once

#include <memory>
#include <vector>

#include <cairo.h>

#include "bench/bare_gl.h"
#include "bench/rigs.h"

namespace bench {

/// Paints a rig's pieces with Cairo, on the calling thread.
class CairoPainter {
 public:
  /// Throws std::runtime_error when there is no memory for the frame or an image.
  explicit CairoPainter(const Rig& rig);

  /// Clears the frame and paints every piece once over it, in the order given, bilinear. Edges are
  /// hard, which is the quickest. REQUIRES: every four vertices are a parallelogram.
  void Paint(const Drawing& drawing);
  /// Pixels that something was painted on.
  [[nodiscard]] std::size_t Covered() const;

 private:
  struct Release {
    void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
  };
  using Surface = std::unique_ptr<cairo_surface_t, Release>;

  static Surface NewSurface(FrameSize size);
  static Surface SurfaceOf(const tarvo::Picture& picture);

  FrameSize size_;
  Surface frame_;
  std::vector<Surface> images_;
};

}  // namespace bench
