#include "plugin/render/frame.h"

#include "plugin/host/parameters.h"
#include "plugin/host/report.h"

namespace plugin {

using AESDK_OpenGL::AESDK_OpenGL_Err;
using AESDK_OpenGL::AESDK_OpenGL_ErrorText;

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

}  // namespace plugin
