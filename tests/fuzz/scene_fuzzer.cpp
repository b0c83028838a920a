// Bytes as a scene file: whatever they are, reading ends with a scene that holds what it promises,
// at each of its frames, or with an InputError; and the reference model draws what was read.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <random>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "base/files/json.h"
#include "tests/fuzz/finding.h"
#include "tool/reference/overlap_picture.h"
#include "tool/rig/active_bones.h"
#include "tool/rig/animation.h"
#include "tool/rig/file/scene_file.h"

extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace {

using fuzz::Finding;
using tarvo::Json;

// ---- What must hold

void Expect(bool holds, const std::string& otherwise) {
  if (!holds) {
    Finding(otherwise);
  }
}

bool IsOpacity(double value) { return value >= 0.0 && value <= 1.0; }

bool IsDepth(double value) { return std::abs(value) <= tarvo::kDeepestZ; }

void ExpectFinite(const tarvo::Bone& bone) {
  for (const tarvo::Piece& piece : bone.pieces) {
    for (const tarvo::Point& corner : piece.corners) {
      Expect(std::isfinite(corner.x) && std::isfinite(corner.y), "a corner is no number");
    }
  }
}

void ExpectBone(const tarvo::Scene& scene, const tarvo::Bone& bone) {
  Expect(bone.image < scene.images.size(), "a bone's image is none of the scene's");
  Expect(!bone.imageB || *bone.imageB < scene.images.size(), "image B is none of the scene's");
  Expect(IsOpacity(bone.opacity) && IsOpacity(bone.opacityB), "an opacity beyond 0 to 1");
  Expect(!bone.z || (IsDepth(bone.z->start) && IsDepth(bone.z->end)), "a depth beyond all sliders");
  ExpectFinite(bone);
}

void ExpectScene(const tarvo::Scene& scene) {
  Expect(scene.width >= 1 && scene.height >= 1, "a layer without a size");
  Expect(scene.stack.size() == scene.bones.size() + scene.effects.size() + 1, "a stack with gaps");
  for (const tarvo::Bone& bone : scene.bones) {
    ExpectBone(scene, bone);
  }
  for (const tarvo::Setting& setting : scene.settings) {
    Expect(std::isfinite(setting.value), "a setting is no number");
  }
}

PieceQuad ToQuad(const tarvo::Piece& piece) {
  PieceQuad quad{};
  std::memcpy(&quad.corners, piece.corners.data(), sizeof quad.corners);
  std::memcpy(&quad.texCoords, piece.texCoords.data(), sizeof quad.texCoords);
  quad.boneT = piece.t;
  quad.imageSelect = piece.from == tarvo::ImageChoice::kB ? TARVO_IMAGE_B : TARVO_IMAGE_A;
  return quad;
}

/// The first pieces of the active bones, in a small frame.
void Draw(const tarvo::Scene& scene) {
  constexpr std::size_t kMostBones = 4;
  constexpr std::size_t kMostPieces = 12;
  std::vector<tarvo::OverlapBone> bones;
  for (const std::size_t index : tarvo::ActiveBones(scene)) {
    if (bones.size() == kMostBones) {
      break;
    }
    const tarvo::Bone& bone = scene.bones[index];
    tarvo::OverlapBone& drawn = bones.emplace_back();
    drawn.imageA = scene.images[bone.image].picture;
    if (bone.imageB) {
      drawn.imageB = scene.images[*bone.imageB].picture;
    }
    const auto count = static_cast<std::ptrdiff_t>(std::min(bone.pieces.size(), kMostPieces));
    std::transform(bone.pieces.begin(), bone.pieces.begin() + count,
                   std::back_inserter(drawn.pieces), ToQuad);
    if (bone.z) {
      std::tie(drawn.startZ, drawn.endZ) = std::pair(bone.z->start, bone.z->end);
    }
  }
  const bool exact = scene.fast.has_value() && !*scene.fast;
  tarvo::DrawOverlap({std::move(bones), {.width = 12, .height = 9, .exact = exact}});
}

// ---- Changes that keep most files readable

using RandomSource = std::minstd_rand;

std::size_t RandomBelow(RandomSource& random, std::size_t limit) { return random() % limit; }

constexpr std::array kWords{
    "size",      "images",  "fast",  "set",    "effects", "renderer", "bones",    "frames",
    "name",      "active",  "image", "imageB", "z",       "opacity",  "opacityB", "pieces",
    "strip",     "corners", "uv",    "t",      "from",    "rest",     "width",    "pose",
    "poseWidth", "count",   "rate",  "frame",  "value",   "ease",     "hold",     "linear",
    "matchName", "at",      "A",     "B",      "tile",    "tile.png", "QEZ_Tarvo"};

/// A value at one of the edges of what a field takes, or of another kind.
Json EdgeValue(RandomSource& random) {
  const std::array<Json, 22> values{0,
                                    1,
                                    -1,
                                    2,
                                    25,
                                    1000,
                                    1001,
                                    30000,
                                    30001,
                                    99999,
                                    1e5,
                                    0.5,
                                    1e9,
                                    -1e308,
                                    1.7e308,
                                    5e-324,
                                    18446744073709551615U,
                                    nullptr,
                                    true,
                                    Json::array(),
                                    Json::object(),
                                    kWords[RandomBelow(random, kWords.size())]};
  return values[RandomBelow(random, values.size())];
}

/// Some value in the file, the outer ones as likely as the inner ones.
Json& AnyNode(Json& root, RandomSource& random) {
  Json* node = &root;
  while (node->is_structured() && !node->empty() && RandomBelow(random, 5) != 0) {
    auto child = node->begin();
    std::advance(child, static_cast<std::ptrdiff_t>(RandomBelow(random, node->size())));
    node = &*child;
  }
  return *node;
}

void EraseChild(Json& node, RandomSource& random) {
  auto child = node.begin();
  std::advance(child, static_cast<std::ptrdiff_t>(RandomBelow(random, node.size())));
  node.erase(child);
}

void AddChild(Json& node, Json child, RandomSource& random) {
  if (node.is_array()) {
    node.insert(node.begin() + static_cast<std::ptrdiff_t>(RandomBelow(random, node.size() + 1)),
                std::move(child));
  } else if (node.is_object()) {
    node[kWords[RandomBelow(random, kWords.size())]] = std::move(child);
  } else {
    node = std::move(child);
  }
}

void Change(Json& root, RandomSource& random) {
  Json other = AnyNode(root, random);
  Json& node = AnyNode(root, random);
  switch (RandomBelow(random, 6)) {
    case 0:
      node = std::move(other);
      break;
    case 1:
      if (node.is_structured() && !node.empty()) {
        EraseChild(node, random);
      }
      break;
    case 2:
      AddChild(node, std::move(other), random);
      break;
    case 3:
      AddChild(node, EdgeValue(random), random);
      break;
    case 4:
      if (node.is_number()) {
        node = node.get<double>() * (static_cast<double>(RandomBelow(random, 9)) - 4.0);
      }
      break;
    default:
      node = EdgeValue(random);
  }
}

/// Copying a value goes as deep as the value.
bool IsShallow(const std::uint8_t* data, std::size_t size) {
  constexpr std::ptrdiff_t kDeepest = 100;
  return std::count(data, data + size, '[') < kDeepest * 10 &&
         std::count(data, data + size, '{') < kDeepest * 10;
}

}  // namespace

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size,
                                               std::size_t most, unsigned int seed) {
  RandomSource random(seed);
  if (RandomBelow(random, 4) == 0 || !IsShallow(data, size)) {
    return LLVMFuzzerMutate(data, size, most);
  }
  Json root = Json::parse(data, data + size, nullptr, /*allow_exceptions=*/false);
  if (root.is_discarded()) {
    return LLVMFuzzerMutate(data, size, most);
  }
  for (std::size_t changes = 1 + RandomBelow(random, 3); changes > 0; --changes) {
    Change(root, random);
  }
  const std::string text = root.dump();
  if (text.size() > most) {
    return LLVMFuzzerMutate(data, size, most);
  }
  std::copy(text.begin(), text.end(), data);
  return text.size();
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const tarvo::Animation animation = tarvo::ReadAnimation(text, TARVO_FUZZ_IMAGES, "scene.json");
    for (const int frame : {0, animation.count / 2, animation.count - 1}) {
      const tarvo::Scene scene = tarvo::SceneAt(animation, frame);
      ExpectScene(scene);
      Draw(scene);
    }
  } catch (const tarvo::InputError& error) {
    Expect(!error.Lines().empty(), "an error without a line");
  }
  return 0;
}
