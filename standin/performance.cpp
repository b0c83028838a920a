#include "standin/performance.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <string_view>
#include <utility>

#include "standin/performance_settings.h"
#include "standin/scene_faults.h"

namespace standin {
namespace {

constexpr const char* kFastLabel = "Fast transparency";

/// Index of the start slider of the bone with this number (from 0); its end slider is the next.
constexpr int StartSlider(int bone) { return 2 * bone + 1; }

/// "render returned 512: OpenGL resources failed to load!"
std::string Complaint(std::string_view step, const CommandResult& result) {
  std::string line(step);
  line += result.escaped ? " let an exception escape" : " returned " + std::to_string(result.code);
  if (!result.message.empty()) {
    line += ": " + result.message;
  }
  std::ranges::replace(line, '\r', ' ');
  return line;
}

void Expect(std::string_view step, const CommandResult& result) {
  if (!result.Ok()) {
    throw PluginError({Complaint(step, result)});
  }
}

PieceQuad ToQuad(const Piece& piece) {
  PieceQuad quad{};
  for (std::size_t corner = 0; corner < piece.corners.size(); ++corner) {
    quad.corners[corner][0] = piece.corners[corner].x;
    quad.corners[corner][1] = piece.corners[corner].y;
    quad.texCoords[corner][0] = piece.texCoords[corner].x;
    quad.texCoords[corner][1] = piece.texCoords[corner].y;
  }
  quad.boneT = piece.t;
  quad.imageSelect = piece.from == ImageChoice::kB ? TARVO_IMAGE_B : TARVO_IMAGE_A;
  return quad;
}

/// What is to be said of a life that is over; nothing if all went well.
std::vector<std::string> Findings(const Host& host, std::vector<std::string> complaints) {
  const auto& misuses = host.books.Misuses();
  complaints.insert(complaints.end(), misuses.begin(), misuses.end());
  if (!complaints.empty()) {
    for (const std::string& report : host.Reports()) {
      complaints.push_back("the plug-in reported: " + report);
    }
  }
  return complaints;
}

}  // namespace

PluginError::PluginError(std::vector<std::string> faultLines)
    : std::runtime_error(faultLines.empty() ? "" : faultLines.front()),
      lines_(std::move(faultLines)) {}

Performance::Performance(Host& host, const Scene& scene) : host_(host), scene_(scene) {}

void Performance::Open() {
  Expect("global set-up", host_.GlobalSetup());
  Expect("the set-up of parameters", host_.ParamsSetup());
  BuildStack();
  Expect("sequence set-up", renderer_->setup);
  CommandResult idle;
  idle.code = host_.Idle();
  Expect("the idle hook", idle);
  Expect("the update of labels", host_.UpdateParamsUi(*renderer_));
  std::ranges::for_each(actors_, [this](Actor& actor) { Send(actor); });
}

void Performance::BuildStack() {
  Composition& composition = host_.project.AddComposition("Scene");
  host_.project.Activate(composition);
  Layer& layer = composition.AddLayer("Rig", scene_.width, scene_.height);
  for (const StackEntry& entry : scene_.stack) {
    switch (entry.kind) {
      case StackEntry::Kind::kBone:
        AddBone(layer, scene_.bones[entry.index]);
        break;
      case StackEntry::Kind::kOther: {
        const OtherEffect& other = scene_.effects[entry.index];
        Effect& effect = host_.AddEffect(layer, other.matchName);
        effect.groupName = other.name;
        effect.active = other.active;
        break;
      }
      case StackEntry::Kind::kRenderer:
        renderer_ = &host_.AddRenderer(layer);
        break;
    }
  }
}

void Performance::AddBone(Layer& layer, const Bone& bone) {
  Companion& companion = host_.AddCompanion(layer, bone.name);
  companion.active = bone.active;
  companion.imageA.opacity = bone.opacity;
  companion.imageA.Set(scene_.images[bone.image].picture);
  if (bone.imageB) {
    companion.imageB.opacity = bone.opacityB;
    companion.imageB.Set(scene_.images[*bone.imageB].picture);
  }
  std::ranges::transform(bone.pieces, std::back_inserter(companion.pieces), ToQuad);
  if (bone.active) {
    actors_.push_back({&companion, companion.NudgeCounter()});
  }
}

void Performance::Send(Actor& actor) {
  Expect("the message of " + actor.companion->groupName,
         host_.Send(*actor.companion, *renderer_).command);
  actor.answered = actor.companion->NudgeCounter();
}

void Performance::Change(const PlayOptions& options) {
  for (const ParameterChange& change : Changes(options)) {
    ExpectDeclared(change.index);
    Expect("the change of " + renderer_->parameters[static_cast<std::size_t>(change.index)].Name(),
           host_.SetParameter(*renderer_, change.index, change.value));
  }
  for (Actor& actor : actors_) {
    if (actor.companion->NudgeCounter() != actor.answered) {
      Send(actor);
    }
  }
}

void Performance::ExpectDeclared(int index) const {
  if (static_cast<std::size_t>(index) >= renderer_->parameters.size()) {
    throw PluginError({"slider " + std::to_string(index) + " is to be moved, but the plug-in has " +
                       std::to_string(renderer_->parameters.size() - 1) + " parameters"});
  }
}

std::vector<ParameterChange> Performance::Changes(const PlayOptions& options) const {
  std::vector<ParameterChange> changes;
  int number = 0;
  for (const StackEntry& entry : scene_.stack) {
    if (entry.kind != StackEntry::Kind::kBone || !scene_.bones[entry.index].active) {
      continue;
    }
    if (const auto& z = scene_.bones[entry.index].z) {
      changes.push_back({StartSlider(number), z->start});
      changes.push_back({StartSlider(number) + 1, z->end});
    }
    ++number;
  }
  std::vector<Setting> settings;
  if (const auto fast = options.fast ? options.fast : scene_.fast) {
    settings.push_back({kFastLabel, *fast ? 1.0 : 0.0, "fast"});
  }
  settings.insert(settings.end(), scene_.settings.begin(), scene_.settings.end());
  settings.insert(settings.end(), options.settings.begin(), options.settings.end());
  const auto found = FindParameters(renderer_->parameters, settings);
  changes.insert(changes.end(), found.begin(), found.end());
  return changes;
}

PlayedFrame Performance::Render(int downsample) {
  const auto denominator = static_cast<A_u_long>(downsample);
  const FrameRequest request{.downsampleX = denominator, .downsampleY = denominator};
  const auto start = std::chrono::steady_clock::now();
  RenderResult result = host_.Render(*renderer_, request);
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  Expect("render", result.command);
  PlayedFrame frame{.picture = std::move(result.picture), .milliseconds = spent.count()};
  for (const Actor& actor : actors_) {
    frame.pieces += actor.companion->pieces.size();
  }
  return frame;
}

PlayedFrame Play(Host& host, const Scene& scene, const PlayOptions& options) {
  PlayedFrame frame;
  std::vector<std::string> complaints;
  try {
    Performance performance(host, scene);
    performance.Open();
    performance.Change(options);
    frame = performance.Render(options.downsample);
  } catch (const PluginError& error) {
    complaints = error.Lines();
  }
  host.Close();
  if (const auto lines = Findings(host, complaints); !lines.empty()) {
    throw PluginError(lines);
  }
  return frame;
}

}  // namespace standin
