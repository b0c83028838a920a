#include "standin/scene_file.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "standin/image_file.h"
#include "standin/project.h"
#include "standin/scene_json.h"
#include "standin/scene_keys.h"
#include "standin/scene_node.h"
#include "standin/scene_pieces.h"
#include "standin/scene_stack.h"
#include "standin/scene_values.h"

namespace standin {
namespace {

constexpr int kLongestLayerSide = 30'000;
constexpr std::size_t kLongestName = 31;  // bytes of a name in the host

std::string ReadName(const SceneNode& owner) {
  const auto name = owner.Need("name", "text");
  return name ? name->Text(kLongestName) : "";
}

/// Where an image lies that a scene file in `folder` names.
std::filesystem::path ImageFile(const std::filesystem::path& folder, const std::string& name) {
  return folder / FilePath(name).Get();
}

Picture ReadImage(const SceneNode& node, const std::filesystem::path& folder) {
  const std::string file = node.Text();
  if (file.empty()) {
    return {};
  }
  try {
    return ReadPng(ImageFile(folder, file));
  } catch (const FileError& error) {
    node.Fault(file + ": " + error.what());
    return {};
  }
}

OtherEffect ReadEffect(const SceneNode& node) {
  node.AllowKeys({"name", "matchName", "active", "at"});
  OtherEffect effect;
  effect.name = ReadName(node);
  effect.active = node.FlagOr("active", true);
  if (const auto matchName = node.Need("matchName", "text")) {
    effect.matchName = matchName->Text(kLongestName);
    if (effect.matchName == kCompanionMatchName || effect.matchName == kRendererMatchName) {
      matchName->Expected("match name other than those of bones and renderer");
    }
  }
  return effect;
}

const BoneKeys* KeysOf(const Animation& animation, std::size_t bone) {
  const auto found = std::ranges::find(animation.bones, bone, &BoneKeys::bone);
  return found == animation.bones.end() ? nullptr : &*found;
}

bool IsActive(const Animation& animation, std::size_t bone, int frame) {
  const BoneKeys* keys = KeysOf(animation, bone);
  return keys == nullptr || keys->active.empty() ? animation.scene.bones[bone].active
                                                 : SegmentAt(keys->active, frame).from->value;
}

bool HasDepth(const Animation& animation, std::size_t bone) {
  const BoneKeys* keys = KeysOf(animation, bone);
  return animation.scene.bones[bone].z || (keys != nullptr && !keys->z.empty());
}

/// Reads a scene from its root to its leaves, keeping faults as it goes.
class SceneReader {
 public:
  SceneReader(std::filesystem::path folder, std::string fileName)
      : folder_(std::move(folder)), fileName_(std::move(fileName)) {}

  Animation Read(const SceneNode& root) {
    root.AllowKeys({"size", "images", "fast", "set", "effects", "renderer", "bones", "frames"});
    ReadSize(root);
    ReadImages(root);
    ReadControls(root);
    if (const auto effects = root.Find("effects")) {
      std::ranges::transform(effects->Items(), std::back_inserter(scene_.effects), ReadEffect);
    }
    ReadBones(root);
    scene_.stack = ReadStack(root, scene_);
    ReadFrames(root, strips_, fileName_, animation_);
    ExpectSliders(root);
    return std::move(animation_);
  }

 private:
  void ReadSize(const SceneNode& root) {
    const auto size = root.Need("size", "[width, height]");
    if (!size) {
      return;
    }
    if (const auto sides = size->Items(2, "[width, height]"); !sides.empty()) {
      scene_.width = sides[0].Whole(1, kLongestLayerSide).value_or(1);
      scene_.height = sides[1].Whole(1, kLongestLayerSide).value_or(1);
    }
  }

  void ReadImages(const SceneNode& root) {
    if (const auto images = root.Find("images")) {
      for (const SceneNode::Member& image : images->Members()) {
        scene_.images.push_back({image.key, ReadImage(image.value, folder_)});
      }
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
      bone.image = ReadImageName(*image, scene_.images);
    }
    if (const auto image = node.Find("imageB")) {
      bone.imageB = ReadImageName(*image, scene_.images);
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

  /// A bone with a depth needs sliders for it in every frame in which it is switched on.
  void ExpectSliders(const SceneNode& root) const {
    if (scene_.bones.size() <= kBonesWithSliders) {
      return;
    }
    std::set<std::size_t> faulty;
    for (int frame = 0; frame < animation_.count; ++frame) {
      int active = 0;
      for (std::size_t bone = 0; bone < scene_.bones.size(); ++bone) {
        if (!IsActive(animation_, bone, frame) || ++active <= kBonesWithSliders) {
          continue;
        }
        if (HasDepth(animation_, bone) && faulty.insert(bone).second) {
          root.Fault(PathTo(PathTo("bones", bone), "z") + ": only the first " +
                     std::to_string(kBonesWithSliders) + " active bones have sliders" +
                     (frame == 0 ? "" : " (frame " + std::to_string(frame) + ")"));
        }
      }
    }
  }

  std::filesystem::path folder_;
  std::string fileName_;
  Animation animation_;
  Scene& scene_ = animation_.scene;
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
  return animation;
}

Animation ReadAnimation(const FilePath& file) {
  const std::string name = file.Get().string();
  std::string text;
  try {
    text = ReadWholeFile(file);
  } catch (const FileError& error) {
    throw InputError({name + ": " + error.what()});
  }
  return ReadAnimation(text, file.Get().parent_path(), name);
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
    json = ParseJson(ReadWholeFile(file), faults);
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

}  // namespace standin
