#include "tool/rig/file/scene_images.h"

#include <cstddef>
#include <map>
#include <optional>
#include <unordered_set>
#include <utility>

#include "base/files/out_of_memory.h"
#include "base/files/whole_file.h"
#include "base/image/image_file.h"

namespace tarvo {
namespace {

using ImageNames = std::unordered_set<std::string>;

void AddText(const std::optional<SceneNode>& node, ImageNames& names) {
  if (node && node->IsText()) {
    names.insert(node->Text());
  }
}

void AddKeys(const std::optional<SceneNode>& track, ImageNames& names) {
  if (!track || !track->IsList()) {
    return;
  }
  for (const SceneNode& key : track->Items()) {
    AddText(key.Find("value"), names);
  }
}

/// ImageNames of the images that some bone shows.
ImageNames NamesInUse(const SceneNode& root) {
  SceneFaults ignored("");  // the reader of the bones reports them
  const SceneNode quiet = root.FaultsTo(ignored);
  ImageNames names;
  if (const auto bones = quiet.Find("bones"); bones && bones->IsList()) {
    for (const SceneNode& bone : bones->Items()) {
      AddText(bone.Find("image"), names);
      AddText(bone.Find("imageB"), names);
    }
  }
  const auto frames = quiet.Find("frames");
  const auto keyed = frames ? frames->Find("bones") : std::nullopt;
  if (keyed && keyed->IsObject()) {
    for (const SceneNode::Member& bone : keyed->Members()) {
      AddKeys(bone.value.Find("image"), names);
      AddKeys(bone.value.Find("imageB"), names);
    }
  }
  return names;
}

/// Reads images one after the other.
class ImageReader {
 public:
  explicit ImageReader(std::filesystem::path folder) : folder_(std::move(folder)) {}

  void Read(const std::string& key, const SceneNode& node, bool isUsed) {
    images_.names.Add(key);
    images_.images.push_back({key, {}});
    const std::string name = node.Text();
    if (name.empty()) {
      return;
    }
    images_.files.push_back(ImageFile(folder_, name));
    try {
      images_.images.back().picture = ReadFile(images_.files.back(), isUsed);
    } catch (const FileError& error) {
      node.Fault(name + ": " + error.what());
    } catch (const OutOfMemory& error) {
      throw OutOfMemory(name + ": " + error.what());
    }
  }

  SceneImages Take() { return std::move(images_); }

 private:
  Picture ReadFile(const std::filesystem::path& file, bool isUsed) {
    const std::filesystem::path place = file.lexically_normal();
    if (const auto known = decoded_.find(place); isUsed && known != decoded_.end()) {
      const Picture& picture = images_.images[known->second].picture;
      Count(picture.width, picture.height);
      return picture;
    }
    const PngFile png(file);
    images_.fingerprint = Fingerprint(png.Bytes(), images_.fingerprint);
    if (!isUsed) {
      return {};
    }
    Count(png.Width(), png.Height());
    Picture picture = png.Decode();
    decoded_[place] = images_.images.size() - 1;
    return picture;
  }

  void Count(int width, int height) {
    const auto pixels = static_cast<std::uintmax_t>(width) * static_cast<std::uintmax_t>(height);
    if (pixels > kMostImagePixels - pixels_) {
      throw FileError("the images of a scene have at most " + std::to_string(kMostImagePixels) +
                      " pixels together; this one has " + std::to_string(pixels) +
                      ", and those before it " + std::to_string(pixels_));
    }
    pixels_ += pixels;
  }

  std::filesystem::path folder_;
  SceneImages images_;
  std::map<std::filesystem::path, std::size_t> decoded_;  ///< place in images_ of each file
  std::uintmax_t pixels_ = 0;
};

}  // namespace

std::filesystem::path ImageFile(const std::filesystem::path& folder, const std::string& name) {
  return folder / FilePath(name).Get();
}

SceneImages ReadImages(const SceneNode& root, const std::filesystem::path& folder) {
  const auto images = root.Find("images");
  if (!images) {
    return {};
  }
  const ImageNames used = NamesInUse(root);
  ImageReader reader(folder);
  for (const SceneNode::Member& image : images->Members()) {
    reader.Read(image.key, image.value, used.contains(image.key));
  }
  return reader.Take();
}

}  // namespace tarvo
