#include "render/frame.h"

#include <utility>

#include "host/parameters.h"
#include "host/report.h"

namespace tarvo {

using AESDK_OpenGL::AESDK_OpenGL_Err;
using AESDK_OpenGL::AESDK_OpenGL_ErrorText;

void ScratchWorld::Make(A_long width, A_long height) {
  if (!host_.Ok()) return;
  host_.Run(&PF_WorldSuite1::new_world, effectRef_, width, height, PF_NewWorldFlag_NONE, &world_);
  made_ = host_.Ok();
  if (!made_) world_ = {};
}

void ScratchWorld::Dispose() {
  if (std::exchange(made_, false)) {
    host_.GiveBack(&PF_WorldSuite1::dispose_world, effectRef_, &world_);
  }
}

Frame::Frame(PF_InData& inData, PF_OutData& outData, PF_ParamDef* const* parameters,
             PF_EffectWorld& outputWorld, HostCalls& hostCalls, Scene& instanceScene)
    : in(inData),
      out(outData),
      params(parameters),
      output(outputWorld),
      host(hostCalls),
      scene(instanceScene),
      scaleX(1.0 / inData.downsample_x.den),
      scaleY(1.0 / inData.downsample_y.den),
      outWidth(outputWorld.width),
      outHeight(outputWorld.height),
      fastTransparency(parameters[PARAM_FAST_TRANSPARENCY]->u.bd.value != 0),
      scratchWorld(hostCalls, inData.effect_ref) {}

void RequireFramework(Frame& frame, AESDK_OpenGL_Err code) {
  Require(frame.in, frame.out, code, AESDK_OpenGL_ErrorText, Display::kYes);
}

}  // namespace tarvo
