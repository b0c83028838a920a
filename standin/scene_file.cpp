#include "standin/scene_file.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <optional>
#include <utility>
#include <vector>

#include "standin/image_file.h"
#include "standin/project.h"
#include "standin/scene_json.h"
#include "standin/scene_node.h"
#include "standin/scene_pieces.h"
#include "standin/scene_stack.h"

namespace standin {
namespace {

constexpr int kLongestLayerSide = 30'000;
constexpr std::size_t kLongestName = 31;  // bytes of a name in the host
constexpr Range kOpacities{.least = 0.0, .most = 1.0};
constexpr Range kDepths{.least = -1e9, .most = 1e9};  // what a slider accepts when typed

std::string ReadName(const SceneNode& owner) {
  const auto name = owner.Need("name", "text");
  return name ? name->Text(kLongestName) : "";
}

Picture ReadImage(const SceneNode& node, const std::filesystem::path& folder) {
  const std::string file = node.Text();
  if (file.empty()) {
    return {};
  }
  try {
    return ReadPng(folder / std::filesystem::path(std::u8string(file.begin(), file.end())));
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

/// Reads a scene from its root to its leaves, keeping faults as it goes.
class SceneReader {
 public:
  SceneReader(std::filesystem::path folder, std::string fileName)
      : folder_(std::move(folder)), fileName_(std::move(fileName)) {}

  Scene Read(const SceneNode& root) {
    root.AllowKeys({"size", "images", "fast", "set", "effects", "renderer", "bones"});
    ReadSize(root);
    ReadImages(root);
    ReadControls(root);
    if (const auto effects = root.Find("effects")) {
      std::ranges::transform(effects->Items(), std::back_inserter(scene_.effects), ReadEffect);
    }
    ReadBones(root);
    scene_.stack = ReadStack(root, scene_);
    return std::move(scene_);
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
      bone.image = ImageIndex(*image);
    }
    if (const auto image = node.Find("imageB")) {
      bone.imageB = ImageIndex(*image);
    }
    bone.opacity = node.NumberOr("opacity", kOpacities, 1.0);
    bone.opacityB = node.NumberOr("opacityB", kOpacities, 1.0);
    if (const auto z = node.Find("z")) {
      bone.z = ReadZ(*z, bone.active);
    }
    bone.pieces = ReadPieces(node);
    return bone;
  }

  /// REQUIRES: the bones above are in the scene.
  [[nodiscard]] ZPair ReadZ(const SceneNode& node, bool active) const {
    if (active && std::ranges::count(scene_.bones, true, &Bone::active) >= kBonesWithSliders) {
      node.Fault("only the first " + std::to_string(kBonesWithSliders) +
                 " active bones have sliders");
    }
    const auto [start, end] = ReadEnds(node, kDepths);
    return {start, end};
  }

  [[nodiscard]] std::size_t ImageIndex(const SceneNode& node) const {
    const std::string name = node.Text();
    const auto found = std::ranges::find(scene_.images, name, &NamedImage::name);
    if (found == scene_.images.end() && !name.empty()) {
      std::vector<std::string> names;
      std::ranges::transform(scene_.images, std::back_inserter(names), &NamedImage::name);
      node.Fault("no image is called \"" + name + "\"" + NearestHint(name, names));
    }
    return static_cast<std::size_t>(std::distance(scene_.images.begin(), found));
  }

  std::filesystem::path folder_;
  std::string fileName_;
  Scene scene_;
};

}  // namespace

Scene ReadScene(const std::string& text, const std::filesystem::path& folder,
                const std::string& fileName) {
  SceneFaults faults(fileName);
  Scene scene;
  if (const auto json = ParseJson(text, faults)) {
    scene = SceneReader(folder, fileName).Read(SceneNode(*json, "", faults));
  }
  if (!faults.Empty()) {
    throw InputError(faults.Lines());
  }
  return scene;
}

Scene ReadScene(const std::filesystem::path& file) {
  std::string text;
  try {
    text = ReadWholeFile(file);
  } catch (const FileError& error) {
    throw InputError({file.string() + ": " + error.what()});
  }
  return ReadScene(text, file.parent_path(), file.string());
}

}  // namespace standin
