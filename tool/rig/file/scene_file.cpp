#include "tool/rig/file/scene_file.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "base/files/json.h"
#include "base/files/whole_file.h"
#include "tarvo/companion.h"
#include "tool/rig/file/scene_images.h"
#include "tool/rig/file/scene_keys.h"
#include "tool/rig/file/scene_node.h"
#include "tool/rig/file/scene_pieces.h"
#include "tool/rig/file/scene_sliders.h"
#include "tool/rig/file/scene_stack.h"
#include "tool/rig/file/scene_values.h"

namespace tarvo {
namespace {

constexpr int kLongestLayerSide = TARVO_LONGEST_SIDE;
/// Most bones and other effects. The plug-in looks through all of the stack at each bone's message:
/// the time grows with the square of their number.
constexpr std::size_t kMostInStack = 4096;
constexpr std::uintmax_t kLargestScene = std::uintmax_t{1} << 28;  // bytes of its file
constexpr std::size_t kLongestName = 31;                           // bytes of a name in the host

std::string ReadName(const SceneNode& owner) {
  const auto name = owner.Need("name", "text");
  return name ? name->Text(kLongestName) : "";
}

OtherEffect ReadEffect(const SceneNode& node) {
  node.AllowKeys({"name", "matchName", "active", "at"});
  OtherEffect effect;
  effect.name = ReadName(node);
  effect.active = node.FlagOr("active", true);
  if (const auto matchName = node.Need("matchName", "text")) {
    effect.matchName = matchName->Text(kLongestName);
    if (effect.matchName == TARVO_COMPANION_MATCH_NAME ||
        effect.matchName == TARVO_RENDERER_MATCH_NAME) {
      matchName->Expected("match name other than those of bones and renderer");
    }
  }
  return effect;
}

/// Reads a scene from its root to its leaves, keeping faults as it goes.
class SceneReader {
 public:
  SceneReader(std::filesystem::path folder, std::string fileName)
      : folder_(std::move(folder)), fileName_(std::move(fileName)) {}

  Animation Read(const SceneNode& root) {
    root.AllowKeys({"size", "images", "fast", "set", "effects", "renderer", "bones", "frames"});
    ReadSize(root);
    SceneImages read = ReadImages(root, folder_);
    scene_.images = std::move(read.images);
    images_ = std::move(read.names);
    animation_.files = std::move(read.files);
    animation_.fingerprint = read.fingerprint;
    ReadControls(root);
    if (const auto effects = root.Find("effects")) {
      std::ranges::transform(effects->Items(), std::back_inserter(scene_.effects), ReadEffect);
    }
    ReadBones(root);
    ExpectShortStack(root);
    scene_.stack = ReadStack(root, scene_);
    ReadFrames(root, images_, strips_, fileName_, animation_);
    ExpectSliders(root, animation_);
    return std::move(animation_);
  }

 private:
  void ReadSize(const SceneNode& root) {
    const auto size = root.Need("size", "[width, height]");
    if (!size) {
      return;
    }
    if (const auto sides = size->Items(2, "[width, height]"); !sides.empty()) {
      scene_.width = sides[0].Integer(1, kLongestLayerSide).value_or(1);
      scene_.height = sides[1].Integer(1, kLongestLayerSide).value_or(1);
    }
  }

  void ReadControls(const SceneNode& root) {
    if (const auto fast = root.Find("fast")) {
      scene_.fast = fast->Flag();
    }
    if (const auto settings = root.Find("set")) {
      for (const SceneNode::Member& setting : settings->Members()) {
        scene_.settings.push_back(
            {setting.key, setting.value.Number(), fileName_ + ": " + PathTo("set", setting.key)});
      }
    }
  }

  void ReadBones(const SceneNode& root) {
    if (const auto bones = root.Need("bones", "list of bones")) {
      for (const SceneNode& bone : bones->Items()) {
        scene_.bones.push_back(ReadBone(bone));
      }
    }
  }

  Bone ReadBone(const SceneNode& node) {
    node.AllowKeys(
        {"name", "active", "image", "imageB", "opacity", "opacityB", "z", "pieces", "strip"});
    Bone bone;
    bone.name = ReadName(node);
    bone.active = node.FlagOr("active", true);
    if (const auto image = node.Need("image", "name of an image")) {
      bone.image = ReadImageName(*image, images_);
    }
    if (const auto image = node.Find("imageB")) {
      bone.imageB = ReadImageName(*image, images_);
    }
    bone.opacity = node.NumberOr("opacity", kOpacities, 1.0);
    bone.opacityB = node.NumberOr("opacityB", kOpacities, 1.0);
    if (const auto z = node.Find("z")) {
      bone.z = ReadEnds(*z, kDepths);
    }
    BonePieces read = ReadPieces(node);
    bone.pieces = std::move(read.pieces);
    strips_.push_back(read.strip);
    return bone;
  }

  void ExpectShortStack(const SceneNode& root) const {
    const std::size_t count = scene_.bones.size() + scene_.effects.size();
    if (count > kMostInStack) {
      root.Fault("bones: at most " + std::to_string(kMostInStack) +
                 " bones and other effects together expected, " + std::to_string(count) + " given");
    }
  }

  std::filesystem::path folder_;
  std::string fileName_;
  Animation animation_;
  Scene& scene_ = animation_.scene;
  NameIndex images_;
  std::vector<std::optional<Strip>> strips_;  // of each bone
};

}  // namespace

Animation ReadAnimation(const std::string& text, const std::filesystem::path& folder,
                        const std::string& fileName) {
  SceneFaults faults(fileName);
  Animation animation;
  if (const auto json = ParseJson(text, faults)) {
    animation = SceneReader(folder, fileName).Read(SceneNode(*json, "", faults));
  }
  if (!faults.Empty()) {
    throw InputError(faults.Lines());
  }
  animation.fingerprint = Fingerprint(text, animation.fingerprint);
  return animation;
}

Animation ReadAnimation(const FilePath& file) {
  const std::string name = file.Get().string();
  std::string text;
  try {
    text = ReadWholeFile(file, kLargestScene);
  } catch (const FileError& error) {
    throw InputError({name + ": " + error.what()});
  }
  Animation animation = ReadAnimation(text, file.Get().parent_path(), name);
  animation.files.push_back(file.Get());
  return animation;
}

Scene ReadScene(const FilePath& file) {
  Animation animation = ReadAnimation(file);
  MoveTo(animation.scene, animation, 0);
  return std::move(animation.scene);
}

std::vector<std::filesystem::path> FilesOf(const FilePath& file) {
  std::vector<std::filesystem::path> files = {file.Get()};
  SceneFaults faults("");
  std::optional<Json> json;
  try {
    json = ParseJson(ReadWholeFile(file, kLargestScene), faults);
  } catch (const FileError&) {
    return files;
  }
  const auto images =
      json ? SceneNode(*json, "", faults).Find("images") : std::optional<SceneNode>();
  if (images) {
    for (const SceneNode::Member& image : images->Members()) {
      files.push_back(ImageFile(file.Get().parent_path(), image.value.Text()));
    }
  }
  return files;
}

}  // namespace tarvo
