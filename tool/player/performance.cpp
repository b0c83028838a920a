#include "tool/player/performance.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <map>
#include <string_view>
#include <utility>

#include "base/files/input_error.h"
#include "base/files/out_of_memory.h"
#include "standin/core/crash_record.h"
#include "tool/player/performance_settings.h"
#include "tool/rig/active_bones.h"

namespace tarvo {
namespace {

constexpr const char* kFastLabel = "Fast transparency";

/// "render returned 512: OpenGL resources failed to load!"
std::string Complaint(std::string_view step, const standin::CommandResult& result) {
  std::string line(step);
  line += result.escaped ? " let an exception escape" : " returned " + std::to_string(result.code);
  if (!result.message.empty()) {
    line += ": " + result.message;
  }
  std::ranges::replace(line, '\r', ' ');
  return line;
}

void Expect(std::string_view step, const standin::CommandResult& result) {
  if (result.code == PF_Err_OUT_OF_MEMORY) {
    throw OutOfMemory(Complaint(step, result));
  }
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

/// What a bone shows: nothing while it is switched off.
std::vector<PieceQuad> Quads(const Bone& bone) {
  std::vector<PieceQuad> quads;
  if (bone.active) {
    std::ranges::transform(bone.pieces, std::back_inserter(quads), ToQuad);
  }
  return quads;
}

bool AreSame(const std::vector<PieceQuad>& a, const std::vector<PieceQuad>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a.front()) == 0);
}

/// What is to be said of a life that is over; nothing if all went well.
std::vector<std::string> Findings(const standin::Host& host, std::vector<std::string> complaints) {
  const auto& misuses = host.books.Misuses();
  complaints.insert(complaints.end(), misuses.begin(), misuses.end());
  if (!complaints.empty()) {
    for (const std::string& report : host.Reports()) {
      complaints.push_back("the plug-in reported: " + report);
    }
  }
  return complaints;
}

/// The host's time at a frame, in frames of 1/25 second.
int HostTime(const Animation& animation, int frame) {
  return static_cast<int>(std::lround(frame * (25.0 / animation.rate)));
}

/// Everything but the end of the host.
Traffic Run(standin::Host& host, const Animation& animation, const std::vector<int>& frames,
            const PlayOptions& options, const TakeFrame& take) {
  Scene scene = animation.scene;
  Performance performance(host, scene);
  bool isOpen = false;
  for (const int frame : frames) {
    standin::NoteFrame(frame);
    MoveTo(scene, animation, frame);
    if (isOpen) {
      performance.GoOn(options);
    } else {
      performance.Open();
      performance.Change(options);
      isOpen = true;
    }
    PlayedFrame played = performance.Render(options.downsample, HostTime(animation, frame));
    if (!host.books.Misuses().empty() || !take(frame, std::move(played))) {
      break;
    }
  }
  return performance.Sent();
}

}  // namespace

PluginError::PluginError(std::vector<std::string> faultLines)
    : std::runtime_error(faultLines.empty() ? "" : faultLines.front()),
      lines_(std::move(faultLines)) {}

Performance::Performance(standin::Host& host, const Scene& scene) : host_(host), scene_(scene) {}

void Performance::Open() {
  Expect("global set-up", host_.GlobalSetup());
  Expect("the set-up of parameters", host_.ParamsSetup());
  BuildStack();
  Expect("sequence set-up", renderer_->setup);
  standin::CommandResult idle;
  idle.code = host_.Idle();
  Expect("the idle hook", idle);
  UpdateLabels();
  for (Actor& actor : actors_) {
    if (actor.companion->active) {
      Send(actor);
    }
  }
}

void Performance::BuildStack() {
  standin::Composition& composition = host_.project.AddComposition("Scene");
  host_.project.Activate(composition);
  standin::Layer& layer = composition.AddLayer("Rig", scene_.width, scene_.height);
  for (const StackEntry& entry : scene_.stack) {
    switch (entry.kind) {
      case StackEntry::Kind::kBone:
        AddBone(layer, entry.index);
        break;
      case StackEntry::Kind::kOther: {
        const OtherEffect& other = scene_.effects[entry.index];
        standin::Effect& effect = host_.AddEffect(layer, other.matchName);
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

void Performance::AddBone(standin::Layer& layer, std::size_t bone) {
  standin::Companion& companion = host_.AddCompanion(layer, scene_.bones[bone].name);
  companion.active = scene_.bones[bone].active;
  actors_.push_back({.bone = bone, .companion = &companion, .answered = companion.NudgeCounter()});
  Dress(actors_.back());
}

void Performance::Dress(Actor& actor) {
  const Bone& bone = scene_.bones[actor.bone];
  std::vector<PieceQuad> quads = Quads(bone);
  if (!AreSame(quads, actor.companion->pieces)) {
    actor.companion->pieces = std::move(quads);
    actor.hasNews = true;
  }
  if (bone.active) {  // one that is off keeps its images for its return
    Show(actor.companion->imageA, actor.imageA, {bone.image, bone.opacity}, actor);
    Show(actor.companion->imageB, actor.imageB, {bone.imageB, bone.opacityB}, actor);
  }
}

void Performance::Show(standin::CompanionImage& image, Shown& shown, const Shown& wanted,
                       Actor& actor) {
  if (!wanted.image || wanted == shown) {
    return;
  }
  image.Set(scene_.images[*wanted.image].picture);
  image.opacity = wanted.opacity;
  shown = wanted;
  actor.hasNews = true;
}

void Performance::Send(Actor& actor) {
  const standin::SendResult result = host_.Send(*actor.companion, *renderer_);
  Expect("the message of " + actor.companion->groupName, result.command);
  actor.answered = actor.companion->NudgeCounter();
  actor.hasNews = false;
  ++sent_.messages;
  sent_.images += (result.tookA ? 1U : 0U) + (result.tookB ? 1U : 0U);
}

void Performance::UpdateLabels() {
  Expect("the update of labels", host_.UpdateParamsUi(*renderer_));
}

void Performance::Change(const PlayOptions& options) {
  MoveSliders(options);
  for (Actor& actor : actors_) {
    if (actor.hasNews || actor.companion->NudgeCounter() != actor.answered) {
      Send(actor);
    }
  }
}

void Performance::GoOn(const PlayOptions& options) {
  bool isSwitched = false;
  for (Actor& actor : actors_) {
    const bool active = scene_.bones[actor.bone].active;
    if (actor.companion->active != active) {
      actor.companion->active = active;
      actor.hasNews = true;  // the others' numbers change too: one message tells the plug-in
      isSwitched = true;
    }
    Dress(actor);
  }
  if (isSwitched) {
    UpdateLabels();
  }
  Change(options);
}

void Performance::MoveSliders(const PlayOptions& options) {
  std::map<int, double> wanted;
  for (const int index : moved_) {
    wanted[index] = host_.DeclaredParameters()[static_cast<std::size_t>(index)].Value();
  }
  for (const ParameterChange& change : Changes(options)) {
    ExpectDeclared(change.index);
    wanted[change.index] = change.value;
  }
  for (const auto& [index, value] : wanted) {
    const standin::Parameter& parameter = renderer_->parameters[static_cast<std::size_t>(index)];
    if (parameter.Value() != value) {
      moved_.insert(index);
      Expect("the change of " + parameter.Name(), host_.SetParameter(*renderer_, index, value));
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
  const std::vector<std::size_t> bones = ActiveBones(scene_);
  for (std::size_t number = 0; number < bones.size(); ++number) {
    if (const auto& z = scene_.bones[bones[number]].z) {
      const int start = StartSliderOf(number);
      changes.push_back({start, z->start});
      changes.push_back({start + 1, z->end});
    }
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

PlayedFrame Performance::Render(int downsample, int time) {
  const auto denominator = static_cast<A_u_long>(downsample);
  const standin::FrameRequest request{
      .downsampleX = denominator, .downsampleY = denominator, .time = time};
  const auto start = std::chrono::steady_clock::now();
  standin::RenderResult result = host_.Render(*renderer_, request);
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  Expect("render", result.command);
  PlayedFrame frame{.picture = std::move(result.picture), .milliseconds = spent.count()};
  for (const Actor& actor : actors_) {
    frame.pieces += actor.companion->pieces.size();
  }
  return frame;
}

PlayedFrame Play(standin::Host& host, const Scene& scene, const PlayOptions& options) {
  Animation still;
  still.scene = scene;
  PlayedFrame frame;
  PlayFrames(host, still, {0}, options, [&](int /*number*/, PlayedFrame played) {
    frame = std::move(played);
    return true;
  });
  return frame;
}

Traffic PlayFrames(standin::Host& host, const Animation& animation, const std::vector<int>& frames,
                   const PlayOptions& options, const TakeFrame& take) {
  Traffic traffic;
  std::vector<std::string> complaints;
  try {
    traffic = Run(host, animation, frames, options, take);
  } catch (const PluginError& error) {
    if (host.books.RanOutOfMemory()) {
      throw OutOfMemory("answering the plug-in, which then said: " + std::string(error.what()));
    }
    complaints = error.Lines();
  }
  host.Close();
  if (const auto lines = Findings(host, complaints); !lines.empty()) {
    throw PluginError(lines);
  }
  return traffic;
}

}  // namespace tarvo
