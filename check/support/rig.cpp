#include "check/support/rig.h"

#include "check/support/parameters.h"
#include "tool/player/overlap_bones.h"

namespace check {
namespace {

using standin::Companion;
using standin::FrameRequest;
using standin::Kind;
using tarvo::Picture;

constexpr int kLayerWidth = 200;
constexpr int kLayerHeight = 160;

std::string Lines(const std::vector<std::string>& texts) {
  std::string lines;
  for (const std::string& text : texts) {
    lines += "\n  " + text;
  }
  return lines;
}

}  // namespace

void EndHostInOrder(standin::Host& host,
                    const std::function<bool(const std::string& violation)>& isExcused) {
  host.injector.FailNothing();
  host.ShowAllSuites();
  host.Close();
  for (const std::string& violation : host.tracker.Violations()) {
    EXPECT_TRUE(isExcused(violation)) << violation;
  }
  for (const Kind kind : {Kind::kHandle, Kind::kWorld, Kind::kSuite, Kind::kLock}) {
    EXPECT_EQ(host.tracker.Count(kind), 0U) << Lines(host.tracker.Outstanding(kind));
  }
  EXPECT_TRUE(host.tracker.Balanced()) << Lines(host.tracker.OutstandingAfterCall());
}

TestRig::TestRig(PF_EntryPoint entryPoint, standin::HostOptions options)
    : host(entryPoint, std::move(options)),
      layer(StartAndMakeLayer()),
      renderer(host.AddRenderer(layer)) {
  EXPECT_TRUE(renderer.setup.Ok()) << renderer.setup.message;
}

standin::Layer& TestRig::StartAndMakeLayer() {
  const standin::CommandResult started = host.StartUp();
  EXPECT_TRUE(started.Ok()) << started.code << " " << started.message;
  standin::Composition& composition = host.project.AddComposition("Stage");
  host.project.Activate(composition);
  return composition.AddLayer("Puppet", kLayerWidth, kLayerHeight);
}

Companion& TestRig::AddBone(const Picture& image, std::vector<PieceQuad> pieces, int position) {
  const std::string name = "Bone " + std::to_string(layer.effects.size());
  Companion& companion = host.AddCompanion(layer, name, position);
  companion.imageA.Set(image);
  companion.pieces = std::move(pieces);
  return companion;
}

void TestRig::SetDepth(int bone, double start, double end) {
  EXPECT_TRUE(host.SetParameter(renderer, StartZ(bone), start).Ok());
  EXPECT_TRUE(host.SetParameter(renderer, EndZ(bone), end).Ok());
}

void TestRig::SetFast(bool fast) {
  EXPECT_TRUE(host.SetParameter(renderer, kFastTransparency, fast ? 1 : 0).Ok());
}

std::vector<Companion*> TestRig::ActiveCompanions() const {
  std::vector<Companion*> active;
  for (const auto& effect : layer.effects) {
    auto* companion = dynamic_cast<Companion*>(effect.get());
    if (companion != nullptr && companion->active) {
      active.push_back(companion);
    }
  }
  return active;
}

void TestRig::Send() {
  for (Companion* companion : ActiveCompanions()) {
    const standin::SendResult sent = host.Send(*companion, renderer);
    EXPECT_TRUE(sent.command.Ok()) << companion->groupName << ": " << sent.command.code;
  }
}

standin::RenderResult TestRig::Render(const FrameRequest& request) {
  standin::RenderResult result = host.Render(renderer, request);
  EXPECT_TRUE(result.command.Ok()) << result.command.code << " " << result.command.message;
  EXPECT_EQ(result.unwritten, 0U);
  return result;
}

tarvo::OverlapPicture TestRig::Expected(const Picture& like, const FrameRequest& request) const {
  return tarvo::DrawOverlap(
      {tarvo::BonesOn(layer, renderer), tarvo::ViewOf(like, renderer, request)});
}

}  // namespace check
