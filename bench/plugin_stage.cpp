#include "bench/plugin_stage.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/frame_times.h"
#include "standin/pixels.h"

namespace bench {
namespace {

constexpr int kFastTransparency = 53;  // index of the parameter

// A host calls a plain function, so what it needs to know lies here.
PF_EntryPoint gPlugin = nullptr;
double gRenderMilliseconds = 0.0;

/// Stands between host and plug-in, and holds a watch to the render command.
PF_Err TimedEntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                       PF_LayerDef* output, void* extra) {
  PF_Err result = PF_Err_NONE;
  const double spent =
      Milliseconds([&] { result = gPlugin(command, in, out, params, output, extra); });
  if (command == PF_Cmd_RENDER) gRenderMilliseconds = spent;
  return result;
}

PF_EntryPoint Timed(PF_EntryPoint plugin) {
  gPlugin = plugin;
  return TimedEntryPoint;
}

standin::HostOptions ForTiming() {
  standin::HostOptions options;
  options.inspectPixels = false;
  return options;
}

standin::RendererInstance& RendererOf(standin::Host& host) {
  for (const auto& effect : host.project.compositions.front().layers.front().effects) {
    if (auto* const renderer = dynamic_cast<standin::RendererInstance*>(effect.get())) {
      return *renderer;
    }
  }
  throw std::runtime_error("the scene has no renderer in its stack");
}

Canvas AskedFor(standin::Host& host, standin::RendererInstance& renderer) {
  const standin::FrameExtent extent = host.FrameSetup(renderer);
  return {extent.width, extent.height, extent.originX, extent.originY};
}

/// A piece on its way into the vertex array.
struct Placed {
  const standin::Piece* piece;
  std::size_t image;
  double opacity;
  double depth;
};

/// Depth at `t` of the bone with this number (from 0), in millionths of Z. Later bones lie in front
/// of earlier ones, and a bone on one level falls along its length, both by next to nothing.
double DepthAt(double start, double end, std::size_t number, double t) {
  const double last = start == end ? end - 0.0001 : end;
  return 1e6 * (start * (1.0 - t) + last * t) - 0.0001 * static_cast<double>(number);
}

void Append(const Placed& placed, Drawing& drawing) {
  if (drawing.runs.empty() || drawing.runs.back().image != placed.image) {
    drawing.runs.push_back({placed.image, static_cast<GLint>(drawing.vertices.size()), 0});
  }
  drawing.runs.back().count += 4;
  const auto single = [](const standin::Point& point) -> std::array<GLfloat, 2> {
    return {static_cast<GLfloat>(point.x), static_cast<GLfloat>(point.y)};
  };
  for (std::size_t corner = 0; corner < 4; ++corner) {
    drawing.vertices.push_back({single(placed.piece->corners[corner]),
                                single(placed.piece->texCoords[corner]),
                                {1.0F, 1.0F, 1.0F, static_cast<GLfloat>(placed.opacity)}});
  }
}

}  // namespace

PluginStage::PluginStage(PF_EntryPoint plugin, const BenchCase& benchCase)
    : scene_(benchCase.makeScene()),
      host_(Timed(plugin), ForTiming()),
      performance_(host_, scene_) {
  host_.gate.KeepLog(false);
  performance_.Open();
  performance_.Change({});
  renderer_ = &RendererOf(host_);
  canvas_ = benchCase.canvas.value_or(AskedFor(host_, *renderer_));
  TimeRender();  // the first frame uploads the images
}

void PluginStage::SetFast(bool fast) {
  host_.SetParameter(*renderer_, kFastTransparency, fast ? 1.0 : 0.0);
}

double PluginStage::TimeRender() {
  standin::FrameExtent extent;
  extent.width = canvas_.width;
  extent.height = canvas_.height;
  extent.originX = canvas_.originX;
  extent.originY = canvas_.originY;
  standin::RenderResult result = host_.RenderInto(*renderer_, extent);
  if (!result.command.Ok()) {
    throw std::runtime_error("render returned " + std::to_string(result.command.code) + ": " +
                             result.command.message);
  }
  lastPicture_ = std::move(result.picture);
  return gRenderMilliseconds;
}

double PluginStage::TimeHostCalls(const std::vector<std::uint8_t>& premultiplied) {
  standin::Worlds& worlds = host_.worlds;
  PF_EffectWorld output{};
  worlds.New(canvas_.width, canvas_.height, PF_NewWorldFlag_NONE, "an output", &output);
  const double spent = Milliseconds([&] {
    standin::FillPixels(output, nullptr, {});
    PF_EffectWorld scratch{};
    worlds.New(canvas_.width, canvas_.height, PF_NewWorldFlag_NONE, "a scratch world", &scratch);
    const std::size_t rowBytes = static_cast<std::size_t>(canvas_.width) * sizeof(PF_Pixel);
    for (A_long row = 0; row < canvas_.height; ++row) {
      std::memcpy(standin::RowOf(scratch, row),
                  premultiplied.data() + static_cast<std::size_t>(row) * rowBytes, rowBytes);
    }
    standin::StraightenPixels(scratch);
    standin::CopyPixels(scratch, nullptr, output, nullptr);
    worlds.Dispose(&scratch, "the benchmark");
  });
  lastPicture_ = standin::Worlds::ToPicture(output);
  worlds.Dispose(&output, "the benchmark");
  return spent;
}

Drawing PluginStage::Ordered() const {
  std::vector<Placed> order;
  std::size_t number = 0;
  for (const standin::StackEntry& entry : scene_.stack) {
    if (entry.kind != standin::StackEntry::Kind::kBone || !scene_.bones[entry.index].active) {
      continue;
    }
    const standin::Bone& bone = scene_.bones[entry.index];
    const double start = renderer_->parameters[2 * number + 1].Value();
    const double end = renderer_->parameters[2 * number + 2].Value();
    for (const standin::Piece& piece : bone.pieces) {
      const bool second = piece.from == standin::ImageChoice::kB;
      order.push_back({&piece, second ? bone.imageB.value() : bone.image,
                       second ? bone.opacityB : bone.opacity,
                       DepthAt(start, end, number, piece.t)});
    }
    ++number;
  }
  std::ranges::stable_sort(order, std::greater(), &Placed::depth);
  Drawing drawing;
  for (const Placed& placed : order) Append(placed, drawing);
  return drawing;
}

}  // namespace bench
