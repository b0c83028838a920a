#include "bench/hosted_rig.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/measure.h"
#include "plugin/gl/framework.h"
#include "plugin/host/host_calls.h"
#include "plugin/host/host_memory.h"
#include "plugin/host/host_world.h"
#include "plugin/host/parameters.h"
#include "plugin/render/pixel_rows.h"

namespace bench {
namespace {

/// For its length, a command is answered by `answer`, and the time that this takes is kept.
class Watch {
 public:
  Watch(PF_Cmd command, PF_EntryPoint answer) : command_(command), answer_(answer) {
    latest_ = this;
  }
  Watch(const Watch&) = delete;
  Watch& operator=(const Watch&) = delete;
  ~Watch() { latest_ = nullptr; }

  /// Of the latest command of the kind; 0 before there was one.
  [[nodiscard]] double Milliseconds() const { return milliseconds_; }

  /// What the host calls in the plug-in's place.
  static PF_Err EntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                           PF_LayerDef* output, void* extra) {
    if (latest_ == nullptr || command != latest_->command_) {
      return EntryPointFunc(command, in, out, params, output, extra);
    }
    PF_Err result = PF_Err_NONE;
    latest_->milliseconds_ = bench::Milliseconds(
        [&] { result = latest_->answer_(command, in, out, params, output, extra); });
    return result;
  }

 private:
  static inline Watch* latest_ = nullptr;  // a host calls a plain function

  PF_Cmd command_;
  PF_EntryPoint answer_;
  double milliseconds_ = 0.0;
};

/// What FrameWithoutDrawing puts into the frame.
const std::uint8_t* gPremultiplied = nullptr;

/// Answers the render command with the host calls of a frame alone.
PF_Err FrameWithoutDrawing(PF_Cmd /*command*/, PF_InData* in, PF_OutData* /*out*/,
                           PF_ParamDef* /*params*/[], PF_LayerDef* output, void* /*extra*/) {
  plugin::HostCalls host(in->pica_basicP);
  host.Run(in->utils->fill, in->effect_ref, nullptr, nullptr, output);
  plugin::HostWorld scratch(host, in->effect_ref);
  scratch.Make(output->width, output->height);
  PF_EffectWorld& world = scratch.Get();
  plugin::HostMemory buffer(host.Suites(), plugin::PackedBytes(world.width, world.height));
  buffer.Lock();
  const A_HandleSize rowBytes = plugin::PackedBytes(world.width, 1);
  for (A_long row = 0; row < world.height; ++row) {
    std::memcpy(plugin::RowOf(*in->utils, world, row),
                gPremultiplied + static_cast<A_HandleSize>(row) * rowBytes, rowBytes);
  }
  host.Run(&PF_FillMatteSuite2::premultiply, in->effect_ref, A_long{0}, &world);
  PF_Rect area = world.extent_hint;
  host.Run(in->utils->copy, in->effect_ref, &world, output, nullptr, &area);
  return host.Code();
}

void Expect(const char* what, const standin::CommandResult& result) {
  if (result.Ok()) {
    return;
  }
  throw std::runtime_error(std::string(what) + " returned " + std::to_string(result.code) + ": " +
                           result.message);
}

/// Depth at `t` of the bone with this number (from 0), in millionths of Z. Later bones lie in front
/// of earlier ones, and a bone on one level falls along its length, both by next to nothing.
double DepthAt(const Bone& bone, std::size_t number, double t) {
  const double last = bone.startZ == bone.endZ ? bone.endZ - 0.0001 : bone.endZ;
  return 1e6 * (bone.startZ * (1.0 - t) + last * t) - 0.0001 * static_cast<double>(number);
}

/// A piece on its way into the vertex array.
struct Placed {
  PieceQuad piece;
  std::size_t image;
  double depth;
};

void Append(const Placed& placed, Drawing& drawing) {
  if (drawing.runs.empty() || drawing.runs.back().image != placed.image) {
    drawing.runs.push_back({placed.image, static_cast<GLint>(drawing.vertices.size()), 0});
  }
  drawing.runs.back().count += 4;
  for (const std::size_t corner : {0U, 1U, 2U, 3U}) {
    const auto single = [&](const double(&pair)[4][2]) -> std::array<GLfloat, 2> {
      return {static_cast<GLfloat>(pair[corner][0]), static_cast<GLfloat>(pair[corner][1])};
    };
    drawing.vertices.push_back(
        {single(placed.piece.corners), single(placed.piece.texCoords), {1.0F, 1.0F, 1.0F, 1.0F}});
  }
}

}  // namespace

standin::Host& TheHost() {
  static standin::Host& host = []() -> standin::Host& {
    standin::HostOptions options;
    options.inspectPixels = false;
    static standin::Host made(Watch::EntryPoint, options);
    made.injector.KeepLog(false);
    Expect("starting the plug-in", made.StartUp());
    made.project.AddComposition("Bench");
    return made;
  }();
  return host;
}

HostedRig::HostedRig(const Rig& rig)
    : size_(rig.size),
      layer_(TheHost().project.compositions.front().AddLayer("Rig", size_.width, size_.height)),
      renderer_(TheHost().AddRenderer(layer_)) {
  standin::Host& host = TheHost();
  Expect("sequence set-up", renderer_.setup);
  int slider = 1;
  for (const Bone& bone : rig.bones) {
    standin::Companion& companion = host.AddCompanion(layer_, "Bone");
    companion.pieces = bone.pieces;
    companion.imageA.picture = bone.image;
    companions_.push_back(&companion);
    Expect("a slider", host.SetParameter(renderer_, slider++, bone.startZ));
    Expect("a slider", host.SetParameter(renderer_, slider++, bone.endZ));
  }
  Send(true);
  TimeRender(true);
}

HostedRig::~HostedRig() {
  while (!layer_.effects.empty()) {
    TheHost().Remove(*layer_.effects.back());
  }
}

void HostedRig::Send(bool withImages) {
  for (standin::Companion* const companion : companions_) {
    companion->imageA.isNew = withImages;
    Expect("a message", TheHost().Send(*companion, renderer_).command);
  }
}

double HostedRig::TimeRender(bool fast, PF_EntryPoint answer) {
  standin::Host& host = TheHost();
  host.SetParameter(renderer_, plugin::PARAM_FAST_TRANSPARENCY, fast ? 1.0 : 0.0);
  const Watch watch(PF_Cmd_RENDER, answer);
  standin::FrameExtent extent;
  extent.width = size_.width;
  extent.height = size_.height;
  standin::RenderResult result = host.RenderInto(renderer_, extent);
  Expect("render", result.command);
  lastPicture_ = std::move(result.picture);
  return watch.Milliseconds();
}

double HostedRig::TimeMessage(PF_EntryPoint answer) {
  const Watch watch(PF_Cmd_COMPLETELY_GENERAL, answer);
  Expect("a message", TheHost().Send(*companions_.front(), renderer_).command);
  return watch.Milliseconds();
}

double HostedRig::TimeHostCalls(const std::vector<std::uint8_t>& premultiplied) {
  gPremultiplied = premultiplied.data();
  return TimeRender(true, FrameWithoutDrawing);
}

double TextureBytes() {
  using AESDK_OpenGL::gState;
  constexpr GLuint kNames = 4096;  // far more than the plug-in makes
  auto* const deviceContext = wglGetCurrentDC();
  auto* const renderContext = wglGetCurrentContext();
  wglMakeCurrent(gState.deviceContext, gState.renderContext);
  double bytes = 0.0;
  for (GLuint name = 1; name < kNames; ++name) {
    if (glIsTexture(name) == GL_FALSE) {
      continue;
    }
    GLint width = 0;
    GLint height = 0;
    glBindTexture(GL_TEXTURE_RECTANGLE_ARB, name);
    glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_WIDTH, &width);
    glGetTexLevelParameteriv(GL_TEXTURE_RECTANGLE_ARB, 0, GL_TEXTURE_HEIGHT, &height);
    bytes += 4.0 * width * height;
  }
  wglMakeCurrent(deviceContext, renderContext);
  return bytes;
}

Drawing InOrder(const Rig& rig) {
  std::vector<Placed> order;
  for (std::size_t number = 0; number < rig.bones.size(); ++number) {
    for (const PieceQuad& piece : rig.bones[number].pieces) {
      order.push_back({piece, number, DepthAt(rig.bones[number], number, piece.boneT)});
    }
  }
  std::ranges::stable_sort(order, std::greater(), &Placed::depth);
  Drawing drawing;
  for (const Placed& placed : order) {
    Append(placed, drawing);
  }
  return drawing;
}

}  // namespace bench
