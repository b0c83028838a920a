#include "check/support/lifecycle_scenario.h"

#include <algorithm>
#include <utility>

#include "check/support/parameters.h"
#include "check/support/pieces.h"
#include "check/support/plugin_under_check.h"
#include "check/support/settings.h"

namespace check {
namespace {

using standin::CommandResult;
using standin::Companion;
using standin::Layer;
using standin::RendererInstance;

constexpr int kSide = 48;  // small pictures: what counts are the calls
constexpr double kDepth = -2;
constexpr Box kArea{.left = 0, .top = 0, .width = kSide, .height = kSide};

void AddBone(standin::Host& host, Layer& layer, std::uint32_t seed) {
  Companion& bone = host.AddCompanion(layer, "Bone " + std::to_string(seed));
  bone.imageA.Set(Pattern(8, 6, seed));
  bone.imageB.Set(Pattern(5, 7, seed + 50));
  bone.pieces = WarpedPieces(seed, 2, kArea, 8, 6);
  bone.pieces.push_back(WarpedPieces(seed + 50, 1, kArea, 5, 7, TARVO_IMAGE_B).front());
}

}  // namespace

LifecycleScenario::LifecycleScenario() : host(PluginUnderCheck()) {}

template <typename Action>
void LifecycleScenario::Do(const std::string& name, Action action) {
  host.injector.ClearLog();
  const std::uint64_t before = host.injector.Injected();
  Step step{.name = name, .result = action(), .injected = {}};
  if (host.injector.Injected() != before) {
    for (const standin::CallRecord& call : host.injector.Log()) {
      if (call.injected) {
        step.injected.push_back(call);
      }
    }
  }
  steps.push_back(std::move(step));
}

void LifecycleScenario::BuildStacks() {
  standin::Composition& composition = host.project.AddComposition("Stage");
  host.project.Activate(composition);
  puppet_ = &composition.AddLayer("Puppet", kSide, kSide);
  other_ = &composition.AddLayer("Other", kSide, kSide);
  AddBone(host, *puppet_, 1);
  host.AddEffect(*puppet_, "Glow");
  AddBone(host, *puppet_, 2);
  AddBone(host, *other_, 3);
}

void LifecycleScenario::Send(RendererInstance& renderer) {
  for (const auto& effect : renderer.OnLayer().effects) {
    auto* bone = dynamic_cast<Companion*>(effect.get());
    if (bone == nullptr) {
      continue;
    }
    bone->SendImagesAgain();
    Do("send " + bone->groupName, [&] { return host.Send(*bone, renderer).command; });
  }
}

void LifecycleScenario::SendAll() {
  Send(*renderers_.front());
  Send(*renderers_.back());
}

void LifecycleScenario::SetFast(bool fast) {
  Do(fast ? "fast" : "exact",
     [&] { return host.SetParameter(*renderers_.front(), kFastTransparency, fast ? 1 : 0); });
}

tarvo::Picture LifecycleScenario::Draw(const std::string& name) {
  tarvo::Picture picture;
  Do("render " + name, [&] {
    standin::RenderResult result = host.Render(*renderers_.front());
    picture = std::move(result.picture);
    return result.command;
  });
  return picture;
}

void LifecycleScenario::ReplaceFirst() {
  if (!renderers_.empty()) {
    Do("remove", [&] { return host.Remove(*renderers_.front()); });
    renderers_.pop_front();
  }
  Do("apply", [&] {
    renderers_.push_front(&host.AddRenderer(*puppet_));
    return renderers_.front()->setup;
  });
}

Views LifecycleScenario::DrawAgain() {
  const bool areSetUp = std::ranges::none_of(steps, [](const Step& step) {
    const bool setsUp = step.name == "apply" || step.name == "duplicate" || step.name == "reopen";
    return setsUp && !step.injected.empty();
  });
  if (renderers_.empty() || !areSetUp) {
    ReplaceFirst();
  }
  Do("depth", [&] { return host.SetParameter(*renderers_.front(), StartZ(1), kDepth); });
  Views views;
  for (const bool fast : {true, false}) {
    SetFast(fast);
    Send(*renderers_.front());
    (fast ? views.fast : views.exact) = Draw("again");
  }
  return views;
}

bool LifecycleScenario::Start() {
  Do("global setup", [&] { return host.GlobalSetup(); });
  if (!steps.back().result.Ok()) {  // a host gives up here
    return false;
  }
  TheSettings().afterGlobalSetup();
  Do("parameters", [&] { return host.ParamsSetup(); });
  if (!steps.back().result.Ok()) {
    return false;
  }
  BuildStacks();
  return true;
}

void LifecycleScenario::Begin() {
  if (!Start()) {
    return;
  }
  for (Layer* layer : {puppet_, other_}) {
    Do("apply", [&] {
      renderers_.push_back(&host.AddRenderer(*layer));
      return renderers_.back()->setup;
    });
  }
  Do("duplicate", [&] {
    renderers_.push_front(&host.Duplicate(*renderers_.front()));
    return renderers_.front()->setup;
  });
  Do("reopen", [&] {
    host.SaveAndReopen();
    for (const RendererInstance* renderer : renderers_) {
      if (!renderer->setup.Ok()) {
        return renderer->setup;
      }
    }
    return CommandResult{};
  });
  RendererInstance& renderer = *renderers_.front();
  Do("idle", [&] {
    CommandResult result;
    result.code = host.Idle();
    return result;
  });
  Do("labels", [&] { return host.UpdateParamsUi(renderer); });
  SendAll();
  Do("depth", [&] { return host.SetParameter(renderer, StartZ(1), kDepth); });
  Do("update", [&] { return host.SetParameter(renderer, kUpdater, 2); });
  Draw("fast");
  SetFast(false);
  SendAll();
  Draw("exact");
  const standin::FrameExtent wide{
      .command = {}, .width = TheSettings().tiledWidth, .height = kSide};
  Do("render in tiles", [&] { return host.RenderInto(renderer, wide).command; });
  Do("about", [&] { return host.About(); });
}

void LifecycleScenario::End() {
  for (RendererInstance* renderer : renderers_) {
    Do("remove", [&] { return host.Remove(*renderer); });
  }
  Do("global setdown", [&] { return host.GlobalSetdown(); });
}

}  // namespace check
