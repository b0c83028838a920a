#include "plugin/companion/idle_hook.h"

#include <array>

#include "plugin/host/effect_iteration.h"
#include "plugin/host/host_reference.h"
#include "plugin/host/match_name.h"
#include "plugin/host/parameters.h"
#include "plugin/host/process.h"

namespace plugin {
namespace {

/// A stretch in which the host shows no errors of its own: Start, then End, once each.
class QuietErrors {
 public:
  explicit QuietErrors(HostCalls& host) : host_(host) {}
  ~QuietErrors() {
    if (open_) {
      host_.RunCleanup(&AEGP_UtilitySuite5::AEGP_EndQuietErrors, A_Boolean{0}, &state_);
    }
  }
  QuietErrors(const QuietErrors&) = delete;
  QuietErrors& operator=(const QuietErrors&) = delete;

  /// Runs whatever the code and replaces it.
  void Start() {
    host_.Chain().Replace(host_.Call(&AEGP_UtilitySuite5::AEGP_StartQuietErrors, &state_));
    open_ = true;
  }

  /// Runs whatever the code and replaces it: errors within the stretch end with it.
  void End() {
    open_ = false;
    host_.Chain().Replace(
        host_.Call(&AEGP_UtilitySuite5::AEGP_EndQuietErrors, A_Boolean{0}, &state_));
  }

 private:
  HostCalls& host_;
  AEGP_ErrReportState state_{};
  bool open_ = false;
};

/// One step of the user's undo list, without a name. Start is chained; a group that was started is
/// ended when the scope ends.
class UndoGroup {
 public:
  explicit UndoGroup(HostCalls& host) : host_(host) {}
  ~UndoGroup() {
    if (open_) {
      host_.RunCleanup(&AEGP_UtilitySuite6::AEGP_EndUndoGroup);
    }
  }
  UndoGroup(const UndoGroup&) = delete;
  UndoGroup& operator=(const UndoGroup&) = delete;

  void Start() {
    if (!host_.Ok()) {
      return;
    }
    host_.Run(&AEGP_UtilitySuite6::AEGP_StartUndoGroup, "");
    open_ = host_.Ok();
  }

 private:
  HostCalls& host_;
  bool open_ = false;
};

/// The composition that the item is, null if it is something else; chained.
AEGP_CompH CompositionOf(HostCalls& host, AEGP_ItemH item) {
  if (item == nullptr) {
    return nullptr;
  }
  alignas(A_long) std::array<AEGP_ItemType, 2> type{};  // hosts write 16 bits, or 32
  AEGP_CompH composition = nullptr;
  host.Run(&AEGP_ItemSuite6::AEGP_GetItemType, item, type.data());
  if (type[0] == AEGP_ItemType_COMP) {
    host.Run(&AEGP_CompSuite4::AEGP_GetCompFromItem, item, &composition);
  }
  return composition;
}

/// The composition that is active now, null if there is none. What goes wrong while the host is
/// asked counts only as far as the end of the quiet section says so.
AEGP_CompH ActiveComposition(HostCalls& host) {
  A_long projects = 0;
  host.Run(&AEGP_ProjSuite5::AEGP_GetNumProjects, &projects);
  if (projects == 0) {
    return nullptr;
  }
  QuietErrors quiet(host);
  quiet.Start();
  AEGP_ItemH item = nullptr;
  host.Chain().Replace(host.Call(&AEGP_ItemSuite6::AEGP_GetActiveItem, &item));
  AEGP_CompH composition = CompositionOf(host, item);
  quiet.End();
  return composition;
}

void SwitchHiddenOn(HostCalls& host, AEGP_EffectRefH effect) {
  StreamReference stream(host);
  stream.Obtain(&AEGP_StreamSuite4::AEGP_GetNewEffectStreamByIndex, gPluginId, effect,
                PARAM_HIDDEN);
  StreamValue hidden(host, stream.Get());
  hidden.Read();
  if (hidden.Get() != 0.0) {
    return;
  }
  hidden.Set(1.0);
  hidden.Write();
}

/// Visits every instance of this effect on a layer, active or not. Not the iteration over
/// companions, because the host operations differ: that one starts from the calling instance, of
/// which there is none here, it asks for flags, which do not matter here, and it acquires
/// references through the effect suite's version 2, where this one uses version 3.
void SwitchHiddenOnInLayer(HostCalls& host, AEGP_CompH composition, A_long layerIndex) {
  AEGP_LayerH layer = nullptr;
  A_long effects = 0;
  host.Run(&AEGP_LayerSuite5::AEGP_GetCompLayerByIndex, composition, layerIndex, &layer);
  host.Run(&AEGP_EffectSuite3::AEGP_GetLayerNumEffects, layer, &effects);
  for (A_long position = 0; position < effects && host.Ok(); ++position) {
    HostReference<&AEGP_EffectSuite3::AEGP_DisposeEffect> effect(host);
    effect.Obtain(&AEGP_EffectSuite3::AEGP_GetLayerEffectByIndex, gPluginId, layer, position);
    if (effect && HasMatchName(host, effect.Get(), kOwnMatchName)) {
      SwitchHiddenOn(host, effect.Get());
    }
  }
}

/// Visits the layers from the bottom of the stack.
void SwitchHiddenOnInLayers(HostCalls& host, AEGP_CompH composition, A_long layers) {
  UndoGroup undo(host);
  undo.Start();
  for (A_long index = layers - 1; index >= 0 && host.Ok(); --index) {
    SwitchHiddenOnInLayer(host, composition, index);
  }
}

A_Err SwitchHiddenOnIn(AEGP_CompH composition) {
  HostCalls host(gBasicSuite);
  A_long layers = 0;
  host.Run(&AEGP_LayerSuite5::AEGP_GetCompNumLayers, composition, &layers);
  QuietErrors quiet(host);
  quiet.Start();
  SwitchHiddenOnInLayers(host, composition, layers);
  quiet.End();
  return host.Code();
}

/// The work of the first idle call after a set-up.
A_Err SetUpNewInstances() {
  AEGP_CompH composition = nullptr;
  {
    HostCalls host(gBasicSuite);
    composition = ActiveComposition(host);
    if (!host.Ok() || composition == nullptr) {
      return host.Code();
    }
  }
  return SwitchHiddenOnIn(composition);
}

}  // namespace

A_Err IdleHook(AEGP_GlobalRefcon, AEGP_IdleRefcon, A_long*) {
  const A_Err result = gIdleTicks == 0 ? CodeOf(SetUpNewInstances) : A_Err_NONE;
  ++gIdleTicks;
  return result;
}

}  // namespace plugin
