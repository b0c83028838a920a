#include "bench/stage.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <string>
#include <utility>

#include "bench/measure.h"
#include "standin/pixels.h"

namespace bench {
namespace {

constexpr int kFastTransparency = 53;  // index of the parameter

// A host calls a plain function, so what it needs to know lies here.
PF_EntryPoint gAnswer = EntryPointFunc;
double gLatestMilliseconds = 0.0;

/// Stands between host and plug-in, and holds a watch to every command.
PF_Err TimedEntryPoint(PF_Cmd command, PF_InData* in, PF_OutData* out, PF_ParamDef* params[],
                       PF_LayerDef* output, void* extra) {
  PF_Err result = PF_Err_NONE;
  gLatestMilliseconds =
      Milliseconds([&] { result = gAnswer(command, in, out, params, output, extra); });
  return result;
}

/// Another answer to the commands of a scope.
class Answering {
 public:
  explicit Answering(PF_EntryPoint answer) { gAnswer = answer; }
  Answering(const Answering&) = delete;
  Answering& operator=(const Answering&) = delete;
  ~Answering() { gAnswer = EntryPointFunc; }
};

void Expect(const char* what, const standin::CommandResult& result) {
  if (result.Ok()) return;
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
  for (std::size_t corner = 0; corner < 4; ++corner) {
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
    static standin::Host made(TimedEntryPoint, options);
    made.gate.KeepLog(false);
    Expect("starting the plug-in", made.StartUp());
    made.project.AddComposition("Bench");
    return made;
  }();
  return host;
}

Stage::Stage(const Rig& rig)
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

Stage::~Stage() {
  while (!layer_.effects.empty()) TheHost().Remove(*layer_.effects.back());
}

void Stage::Send(bool withImages) {
  for (standin::Companion* const companion : companions_) {
    companion->imageA.isNew = withImages;
    Expect("a message", TheHost().Send(*companion, renderer_).command);
  }
}

double Stage::TimeRender(bool fast, PF_EntryPoint answer) {
  standin::Host& host = TheHost();
  host.SetParameter(renderer_, kFastTransparency, fast ? 1.0 : 0.0);
  const Answering answering(answer);
  standin::FrameExtent extent;
  extent.width = size_.width;
  extent.height = size_.height;
  standin::RenderResult result = host.RenderInto(renderer_, extent);
  Expect("render", result.command);
  lastPicture_ = std::move(result.picture);
  return gLatestMilliseconds;
}

double Stage::TimeMessage(PF_EntryPoint answer) {
  const Answering answering(answer);
  Expect("a message", TheHost().Send(*companions_.front(), renderer_).command);
  return gLatestMilliseconds;
}

double Stage::TimeHostCalls(const std::vector<std::uint8_t>& premultiplied) {
  standin::Worlds& worlds = TheHost().worlds;
  PF_EffectWorld output{};
  worlds.New(size_.width, size_.height, PF_NewWorldFlag_NONE, "an output", &output);
  const double spent = Milliseconds([&] {
    standin::FillPixels(output, nullptr, {});
    PF_EffectWorld scratch{};
    worlds.New(size_.width, size_.height, PF_NewWorldFlag_NONE, "a scratch world", &scratch);
    const std::size_t rowBytes = static_cast<std::size_t>(size_.width) * sizeof(PF_Pixel);
    for (A_long row = 0; row < size_.height; ++row) {
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

Drawing InOrder(const Rig& rig) {
  std::vector<Placed> order;
  for (std::size_t number = 0; number < rig.bones.size(); ++number) {
    for (const PieceQuad& piece : rig.bones[number].pieces) {
      order.push_back({piece, number, DepthAt(rig.bones[number], number, piece.boneT)});
    }
  }
  std::ranges::stable_sort(order, std::greater(), &Placed::depth);
  Drawing drawing;
  for (const Placed& placed : order) Append(placed, drawing);
  return drawing;
}

}  // namespace bench
