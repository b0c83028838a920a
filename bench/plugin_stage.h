#pragma once

#include <cstdint>
#include <vector>

#include "bench/bare_gl.h"
#include "bench/bench_cases.h"
#include "standin/host.h"
#include "standin/performance.h"
#include "standin/scene.h"

namespace bench {

/// A scene played on a host up to the point where every further frame has its images already.
///
/// One at a time in a process, as there is one host.
class PluginStage {
 public:
  /// Throws standin::PluginError and whatever the scene throws.
  PluginStage(PF_EntryPoint plugin, const BenchCase& benchCase);
  PluginStage(const PluginStage&) = delete;
  PluginStage& operator=(const PluginStage&) = delete;
  ~PluginStage() = default;

  /// Whether transparency is fast, for the frames to come.
  void SetFast(bool fast);
  /// Milliseconds that the render command took, host operations included; what the host does
  /// before and after it is not counted. Throws std::runtime_error when the plug-in reports an
  /// error. Leaves the picture in `LastPicture`.
  double TimeRender();
  /// Milliseconds of the host operations that a render command needs at the least (fill, new world,
  /// straight colour, copy), done on the pixels of a frame as BareGl::Draw gives them. Leaves the
  /// picture in `LastPicture`.
  double TimeHostCalls(const std::vector<std::uint8_t>& premultiplied);

  [[nodiscard]] const standin::Picture& LastPicture() const { return lastPicture_; }
  [[nodiscard]] const standin::Scene& Scene() const { return scene_; }
  [[nodiscard]] const Canvas& Size() const { return canvas_; }
  /// The scene's pieces in the order in which the plug-in is to draw them. Images are numbered as
  /// in the scene.
  [[nodiscard]] Drawing Ordered() const;

 private:
  standin::Scene scene_;
  standin::Host host_;
  standin::Performance performance_;
  standin::RendererInstance* renderer_ = nullptr;
  Canvas canvas_;
  standin::Picture lastPicture_;
};

}  // namespace bench
