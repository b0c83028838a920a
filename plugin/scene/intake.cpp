#include "plugin/scene/intake.h"

#include <utility>

#include "plugin/host/effect_iteration.h"
#include "plugin/host/host_calls.h"
#include "plugin/host/host_world.h"
#include "plugin/scene/companion_record.h"
#include "plugin/scene/scene_store.h"
#include "plugin/scene/scoped_flag.h"

namespace plugin {
namespace {

constexpr A_long kNoBone = -1;

/// Makes room for `count` slots. Allocates first, so that a scene out of memory stays as it was.
void GrowTo(Scene& scene, std::size_t count) {
  if (count <= scene.slots.size()) {
    return;
  }
  scene.boneOrdinal.reserve(count);
  scene.slots.resize(count);
  scene.boneOrdinal.resize(count, kNoBone);
}

/// Files pieces and opacities. Worlds are not filed: a slot refers to images of its own alone.
void File(CompanionRecord& record, Slot& slot) {
  slot.quads = std::move(record.quads);
  for (const ImageFamily family : kImageFamilies) {
    slot.images[family].sentOpacity = record.images[family].opacity;
  }
}

/// Disposes of an image of an earlier message that no frame has uploaded yet: a new one replaces
/// it. Returns what the host said.
PF_Err DisposePending(HostCalls& host, PF_ProgPtr effectRef, SlotImage& image) {
  if (!image.taken) {
    return PF_Err_NONE;
  }
  host.Need(&PF_WorldSuite1::dispose_world);
  const PF_Err result = host.Attempt(&PF_WorldSuite1::dispose_world, effectRef, &*image.taken);
  image.taken.reset();
  return result;
}

/// Copies the sender's image into our own copy of its world; nothing if the host fails, and then
/// the world that it made is disposed of.
std::optional<PF_EffectWorld> CopyImage(HostCalls& host, const PF_InData& in,
                                        PF_EffectWorld& source) {
  HostWorld own(host, in.effect_ref);
  own.Make(source.width, source.height);
  host.Run(in.utils->copy, in.effect_ref, &source, &own.Get(), nullptr, nullptr);
  return host.Ok() ? std::optional(own.Release()) : std::nullopt;
}

bool BringsImage(const CompanionRecord::Image& sent) {
  return sent.isNew && sent.world.width != 0 && sent.world.height != 0;
}

/// Takes one new image. Sizes, pending mark and the sender's flag change also when the host fails;
/// the sender's world is disposed of only after a copy.
void TakeImage(HostCalls& host, const PF_InData& in, void* sender, ImageFamily family,
               CompanionRecord::Image& sent, SlotImage& image) {
  image.width = sent.world.width;
  image.height = sent.world.height;
  image.taken = CopyImage(host, in, sent.world);
  image.pending = true;
  // Before the disposal: a host that throws in it has disposed of the world.
  ClearNewImageFlag(sender, family);
  host.Run(&PF_WorldSuite1::dispose_world, in.effect_ref, &sent.world);
}

/// Numbers the layer's active companions from the top; without a layer the old numbers stay.
void NumberBones(HostCalls& host, PF_ProgPtr effectRef, std::vector<A_long>& boneOrdinal) {
  const EffectStack stack = GetEffectStack(host, effectRef);
  if (stack.count <= 0) {
    return;
  }
  boneOrdinal.assign(static_cast<std::size_t>(stack.count), kNoBone);
  A_long bone = 0;
  ForEachActiveCompanion(host, stack, [&](A_long position, AEGP_EffectRefH) {
    boneOrdinal[static_cast<std::size_t>(position)] = bone++;
  });
}

void ClearUnusedSlots(Scene& scene) {
  for (std::size_t place = 0; place < scene.slots.size(); ++place) {
    const bool alive = place < scene.boneOrdinal.size() && scene.boneOrdinal[place] != kNoBone;
    if (!alive) {
      scene.slots[place].quads.clear();
    }
  }
}

}  // namespace

PF_Err CompletelyGeneral(PF_InData& in, void* extra) {
  if (in.sequence_data == nullptr) {
    return PF_Err_NONE;
  }
  std::optional<CompanionRecord> record = ReadCompanionRecord(extra);
  if (!record) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  Scene* const scene = gScenes.Reach(in.sequence_data);
  if (scene == nullptr) {
    return PF_Err_NONE;
  }
  if (scene->isInUse) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }

  const ScopedFlag use(scene->isInUse);
  HostCalls host(in.pica_basicP);
  const auto place = static_cast<std::size_t>(record->effectIndex);
  GrowTo(*scene, place + 1);
  Slot& slot = scene->slots[place];
  File(*record, slot);
  ErrorChain disposals;
  for (const ImageFamily family : kImageFamilies) {
    CompanionRecord::Image& sent = record->images[family];
    if (!BringsImage(sent)) {
      continue;
    }
    disposals.Note(DisposePending(host, in.effect_ref, slot.images[family]));
    TakeImage(host, in, extra, family, sent, slot.images[family]);
  }
  NumberBones(host, in.effect_ref, scene->boneOrdinal);
  ClearUnusedSlots(*scene);
  // Last: a disposal that the host refuses must not keep the new image out.
  host.Chain().Note(disposals.Code());
  return host.Code();
}

}  // namespace plugin
