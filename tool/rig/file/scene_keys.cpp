#include "tool/rig/file/scene_keys.h"

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "base/files/escaped_text.h"
#include "tool/rig/file/scene_pieces.h"
#include "tool/rig/file/scene_values.h"

namespace tarvo {
namespace {

/// Frames a second: wide enough for anything that plays, and no time of the host's overflows.
constexpr Range kRates{.least = 0.1, .most = 1000.0};

Ease ReadHandles(const SceneNode& node) {
  constexpr Range kTimes{.least = 0.0, .most = 1.0};  // time never runs backwards
  const auto items = node.Items(4, "[x1, y1, x2, y2]");
  if (items.empty()) {
    return {};
  }
  return {Ease::Kind::kCurve, items[0].Number(kTimes), items[1].Number(), items[2].Number(kTimes),
          items[3].Number()};
}

Ease ReadEase(const SceneNode& key) {
  const auto node = key.Find("ease");
  if (node && node->IsList()) {
    return ReadHandles(*node);
  }
  const std::string word = node && node->IsText() ? node->Text() : "";
  if (node && word != "linear" && word != "hold") {
    node->Expected(R"("linear", "hold" or [x1, y1, x2, y2])");
  }
  return {.kind = word == "hold" ? Ease::Kind::kHeld : Ease::Kind::kLinear};
}

double ReadKeyFrame(const SceneNode& key, std::optional<double> last) {
  const auto node = key.Need("frame", "number");
  if (!node) {
    return last.value_or(0.0);
  }
  const double frame = node->Number();
  if (last && node->IsNumber() && frame <= *last) {
    node->Expected("frame after that of the key before");
  }
  return frame;
}

enum class Interpolation { kInterpolated, kHeld };

/// The keys of one value. `what` names a value in the fault that it is missing.
template <typename Read>
auto ReadKeys(const SceneNode& node, Interpolation interpolation, std::string_view what,
              const Read& read) {
  Track<decltype(read(node))> track;
  const std::vector<SceneNode> items = node.Items();
  if (node.IsList() && items.empty()) {
    node.Expected("list of at least one key");
  }
  for (const SceneNode& item : items) {
    item.AllowKeys(interpolation == Interpolation::kInterpolated
                       ? std::vector<std::string>{"frame", "value", "ease"}
                       : std::vector<std::string>{"frame", "value"});
    auto& key = track.emplace_back();
    key.frame = ReadKeyFrame(
        item, track.size() > 1 ? std::optional(track[track.size() - 2].frame) : std::nullopt);
    if (const auto value = item.Need("value", what)) {
      key.value = read(*value);
    }
    key.ease = interpolation == Interpolation::kInterpolated ? ReadEase(item)
                                                             : Ease{.kind = Ease::Kind::kHeld};
  }
  return track;
}

/// The same of a member, which may be missing.
template <typename Read>
auto ReadTrack(const SceneNode& owner, const std::string& name, Interpolation interpolation,
               std::string_view what, const Read& read) {
  const auto node = owner.Find(name);
  return node ? ReadKeys(*node, interpolation, what, read)
              : decltype(ReadKeys(*node, interpolation, what, read)){};
}

bool ReadFlag(const SceneNode& node) { return node.Flag(); }
double ReadNumber(const SceneNode& node) { return node.Number(); }
double ReadOpacity(const SceneNode& node) { return node.Number(kOpacities); }
ZPair ReadDepths(const SceneNode& node) { return ReadEnds(node, kDepths); }
ZPair ReadWidths(const SceneNode& node) { return ReadEnds(node, kWidths); }

/// The keys of one bone.
class BoneKeyReader {
 public:
  BoneKeyReader(const SceneNode& node, const NameIndex& images, const Scene& scene,
                std::size_t bone, const std::optional<Strip>& strip)
      : node_(node), images_(images), bone_(scene.bones[bone]) {
    keys_.bone = bone;
    keys_.strip = strip;
  }

  BoneKeys Read() {
    node_.AllowKeys(
        {"pose", "poseWidth", "corners", "z", "opacity", "opacityB", "active", "image", "imageB"});
    ReadImages();
    keys_.active = ReadTrack(node_, "active", Interpolation::kHeld, "true or false", ReadFlag);
    keys_.opacity =
        ReadTrack(node_, "opacity", Interpolation::kInterpolated, "number", ReadOpacity);
    keys_.opacityB =
        ReadTrack(node_, "opacityB", Interpolation::kInterpolated, "number", ReadOpacity);
    keys_.z =
        ReadTrack(node_, "z", Interpolation::kInterpolated, "number or [start, end]", ReadDepths);
    ReadPlaces();
    return std::move(keys_);
  }

 private:
  void ReadImages() {
    const auto readName = [this](const SceneNode& name) { return ReadImageName(name, images_); };
    keys_.image = ReadTrack(node_, "image", Interpolation::kHeld, "name of an image", readName);
    if (const auto second = node_.Find("imageB"); second && !bone_.imageB) {
      second->Fault("keys need an imageB of the bone");
      return;
    }
    keys_.imageB = ReadTrack(node_, "imageB", Interpolation::kHeld, "name of an image", readName);
  }

  void ReadPlaces() {
    for (const char* ofStrips : {"pose", "poseWidth"}) {
      if (const auto node = node_.Find(ofStrips); node && !keys_.strip) {
        node->Fault("the bone has pieces and no strip; the keys of \"corners\" move it");
        return;
      }
    }
    if (const auto node = node_.Find("corners"); node && keys_.strip) {
      node->Fault("the bone has a strip; the keys of \"pose\" move it");
      return;
    }
    keys_.pose = ReadTrack(node_, "pose", Interpolation::kInterpolated, "2 or 4 points", ReadPose);
    keys_.poseWidth = ReadTrack(node_, "poseWidth", Interpolation::kInterpolated,
                                "number or [start, end]", ReadWidths);
    const std::string corners =
        "list of 4 points for each piece (" + std::to_string(bone_.pieces.size()) + ")";
    keys_.corners = ReadTrack(
        node_, "corners", Interpolation::kInterpolated, corners, [&](const SceneNode& node) {
          Corners read(bone_.pieces.size());
          std::ranges::transform(node.Items(read.size(), corners), read.begin(), ReadPoints<4>);
          return read;
        });
  }

  const SceneNode& node_;
  const NameIndex& images_;
  const Bone& bone_;
  BoneKeys keys_;
};

/// The one bone of this name; none after a fault.
std::optional<std::size_t> FindBone(const SceneNode::Member& member, const NameIndex& bones) {
  const std::size_t count = bones.Count(member.key);
  if (count == 1) {
    return bones.First(member.key);
  }
  const std::string name = "\"" + Shortened(member.key, kLongestQuote) + "\"";
  member.value.Fault(count == 0 ? "no bone is called " + name +
                                      member.value.Hint(member.key, bones.Names())
                                : std::to_string(count) + " bones are called " + name +
                                      "; one with keys needs a name of its own");
  return std::nullopt;
}

void ReadBoneKeys(const SceneNode& node, const NameIndex& images,
                  const std::vector<std::optional<Strip>>& strips, Animation& animation) {
  NameIndex bones;
  for (const Bone& bone : animation.scene.bones) {
    bones.Add(bone.name);
  }
  for (const SceneNode::Member& member : node.Members()) {
    if (const auto bone = FindBone(member, bones)) {
      animation.bones.push_back(
          BoneKeyReader(member.value, images, animation.scene, *bone, strips[*bone]).Read());
    }
  }
}

}  // namespace

void ReadFrames(const SceneNode& root, const NameIndex& images,
                const std::vector<std::optional<Strip>>& strips, const std::string& fileName,
                Animation& animation) {
  const auto frames = root.Find("frames");
  if (!frames) {
    return;
  }
  frames->AllowKeys({"count", "rate", "bones", "set", "fast"});
  if (const auto count = frames->Need("count", "number of frames")) {
    animation.count = count->Integer(1, kMostFrames).value_or(1);
  }
  if (const auto rate = frames->Find("rate")) {
    animation.rate = rate->Number(kRates);
  }
  if (const auto bones = frames->Find("bones")) {
    ReadBoneKeys(*bones, images, strips, animation);
  }
  if (const auto settings = frames->Find("set")) {
    for (const SceneNode::Member& member : settings->Members()) {
      animation.settings.push_back(
          {member.key, ReadKeys(member.value, Interpolation::kInterpolated, "number", ReadNumber),
           fileName + ": " + PathTo("frames.set", member.key)});
    }
  }
  animation.fast = ReadTrack(*frames, "fast", Interpolation::kHeld, "true or false", ReadFlag);
}

}  // namespace tarvo
