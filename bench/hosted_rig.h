#pragma once

#include <cstdint>
#include <vector>

#include "bench/bare_gl.h"
#include "bench/rigs.h"
#include "plugin/entry/entry_point.h"
#include "standin/host/host.h"

namespace bench {

/// The one host of the process, with the plug-in started. Throws std::runtime_error if that fails.
standin::Host& TheHost();

/// A rig on a layer of its own, with an instance of the plug-in that has drawn one frame: every
/// further one has its images already.
class HostedRig {
 public:
  explicit HostedRig(const Rig& rig);
  HostedRig(const HostedRig&) = delete;
  HostedRig& operator=(const HostedRig&) = delete;
  ~HostedRig();

  /// Every companion sends, with its image as a new one if asked.
  void Send(bool withImages);
  /// Milliseconds of the render command. Leaves the picture in `LastPicture`. `answer` answers the
  /// command in the plug-in's place. Throws std::runtime_error when the result is an error.
  double TimeRender(bool fast, PF_EntryPoint answer = EntryPointFunc);
  /// Milliseconds of the general command, one message of the first companion without an image.
  double TimeMessage(PF_EntryPoint answer = EntryPointFunc);
  /// Milliseconds of a render command that makes every call to the host that a frame without new
  /// images needs, but draws nothing: the frame's pixels are those that BareGl::Draw gives. Leaves
  /// the picture in `LastPicture`.
  double TimeHostCalls(const std::vector<std::uint8_t>& premultiplied);

  [[nodiscard]] const tarvo::Picture& LastPicture() const { return lastPicture_; }

 private:
  FrameSize size_;
  standin::Layer& layer_;
  standin::RendererInstance& renderer_;
  std::vector<standin::Companion*> companions_;
  tarvo::Picture lastPicture_;
};

/// Bytes of all rectangle textures in the plug-in's context, its render target's among them.
double TextureBytes();

/// The rig's pieces in the order in which the plug-in is to draw them, images numbered as its
/// bones.
Drawing InOrder(const Rig& rig);

}  // namespace bench
