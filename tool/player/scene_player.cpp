#include "tool/player/scene_player.h"

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
#include "tool/player/player_settings.h"
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

/// What a bone shows: nothing while it is inactive.
bool AreSame(const std::vector<PieceQuad>& a, const std::vector<PieceQuad>& b) {
  return a.size() == b.size() &&
         (a.empty() || std::memcmp(a.data(), b.data(), a.size() * sizeof a.front()) == 0);
}

/// The faults of a run that has ended; nothing if all went well.
std::vector<std::string> Findings(const standin::Host& host, std::vector<std::string> complaints) {
  const auto& violations = host.tracker.Violations();
  complaints.insert(complaints.end(), violations.begin(), violations.end());
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
MessageStatistics Run(standin::Host& host, const Animation& animation,
                      const std::vector<int>& frames, const PlayOptions& options,
                      const TakeFrame& take) {
  Scene scene = animation.scene;
  ScenePlayer player(host, scene);
  bool isOpen = false;
  for (const int frame : frames) {
    standin::NoteFrame(frame);
    MoveTo(scene, animation, frame);
    if (isOpen) {
      player.Advance(options);
    } else {
      player.Open();
      player.Change(options);
      isOpen = true;
    }
    PlayedFrame played = player.Render(options.downsample, HostTime(animation, frame));
    if (!host.tracker.Violations().empty() || !take(frame, std::move(played))) {
      break;
    }
  }
  return player.Sent();
}

}  // namespace

std::vector<PieceQuad> Quads(const Bone& bone) {
  std::vector<PieceQuad> quads;
  if (bone.active) {
    std::ranges::transform(bone.pieces, std::back_inserter(quads), ToQuad);
  }
  return quads;
}

PluginError::PluginError(std::vector<std::string> faultLines)
    : std::runtime_error(faultLines.empty() ? "" : faultLines.front()),
      lines_(std::move(faultLines)) {}

ScenePlayer::ScenePlayer(standin::Host& host, const Scene& scene) : host_(host), scene_(scene) {}

void ScenePlayer::Open() {
  Expect("global set-up", host_.GlobalSetup());
  Expect("the set-up of parameters", host_.ParamsSetup());
  BuildStack();
  Expect("sequence set-up", renderer_->setup);
  standin::CommandResult idle;
  idle.code = host_.Idle();
  Expect("the idle hook", idle);
  UpdateLabels();
  for (BoneState& state : states_) {
    if (state.companion->active) {
      Send(state);
    }
  }
}

void ScenePlayer::BuildStack() {
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

void ScenePlayer::AddBone(standin::Layer& layer, std::size_t bone) {
  standin::Companion& companion = host_.AddCompanion(layer, scene_.bones[bone].name);
  companion.active = scene_.bones[bone].active;
  states_.push_back(
      {.bone = bone, .companion = &companion, .sentCounter = companion.NudgeCounter()});
  Sync(states_.back());
}

void ScenePlayer::Sync(BoneState& state) {
  const Bone& bone = scene_.bones[state.bone];
  std::vector<PieceQuad> quads = Quads(bone);
  if (!AreSame(quads, state.companion->pieces)) {
    state.companion->pieces = std::move(quads);
    state.isDirty = true;
  }
  if (bone.active) {  // one that is off keeps its images for its return
    Show(state.companion->imageA, state.imageA, {bone.image, bone.opacity}, state);
    Show(state.companion->imageB, state.imageB, {bone.imageB, bone.opacityB}, state);
  }
}

void ScenePlayer::Show(standin::CompanionImage& image, Shown& shown, const Shown& wanted,
                       BoneState& state) {
  if (!wanted.image || wanted == shown) {
    return;
  }
  image.Set(scene_.images[*wanted.image].picture);
  image.opacity = wanted.opacity;
  shown = wanted;
  state.isDirty = true;
}

void ScenePlayer::Send(BoneState& state) {
  const standin::SendResult result = host_.Send(*state.companion, *renderer_);
  Expect("the message of " + state.companion->groupName, result.command);
  state.sentCounter = state.companion->NudgeCounter();
  state.isDirty = false;
  ++sent_.messages;
  sent_.images += (result.tookA ? 1U : 0U) + (result.tookB ? 1U : 0U);
}

void ScenePlayer::UpdateLabels() {
  Expect("the update of labels", host_.UpdateParamsUi(*renderer_));
}

void ScenePlayer::Change(const PlayOptions& options) {
  MoveSliders(options);
  for (BoneState& state : states_) {
    if (state.isDirty || state.companion->NudgeCounter() != state.sentCounter) {
      Send(state);
    }
  }
}

void ScenePlayer::Advance(const PlayOptions& options) {
  bool isSwitched = false;
  for (BoneState& state : states_) {
    const bool active = scene_.bones[state.bone].active;
    if (state.companion->active != active) {
      state.companion->active = active;
      state.isDirty = true;  // the others' numbers change too: one message updates the plug-in
      isSwitched = true;
    }
    Sync(state);
  }
  if (isSwitched) {
    UpdateLabels();
  }
  Change(options);
}

void ScenePlayer::MoveSliders(const PlayOptions& options) {
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

void ScenePlayer::ExpectDeclared(int index) const {
  if (static_cast<std::size_t>(index) >= renderer_->parameters.size()) {
    throw PluginError({"slider " + std::to_string(index) + " is to be moved, but the plug-in has " +
                       std::to_string(renderer_->parameters.size() - 1) + " parameters"});
  }
}

std::vector<ParameterChange> ScenePlayer::Changes(const PlayOptions& options) const {
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

PlayedFrame ScenePlayer::Render(int downsample, int time) {
  const auto denominator = static_cast<A_u_long>(downsample);
  const standin::FrameRequest request{
      .downsampleX = denominator, .downsampleY = denominator, .time = time};
  const auto start = std::chrono::steady_clock::now();
  standin::RenderResult result = host_.Render(*renderer_, request);
  const std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
  Expect("render", result.command);
  PlayedFrame frame{.picture = std::move(result.picture), .milliseconds = spent.count()};
  for (const BoneState& state : states_) {
    frame.pieces += state.companion->pieces.size();
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

MessageStatistics PlayFrames(standin::Host& host, const Animation& animation,
                             const std::vector<int>& frames, const PlayOptions& options,
                             const TakeFrame& take) {
  MessageStatistics traffic;
  std::vector<std::string> complaints;
  try {
    traffic = Run(host, animation, frames, options, take);
  } catch (const PluginError& error) {
    if (host.tracker.RanOutOfMemory()) {
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
