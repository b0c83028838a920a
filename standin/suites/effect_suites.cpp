#include "sdk/aegp_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

// There are flags beside that of an active effect, of which this host sets one in every
// effect.
constexpr AEGP_EffectFlags kAnotherFlag = 4;

void PutName(const std::string& name, std::size_t room, A_char* text) {
  text[name.copy(text, room - 1)] = '\0';
}

Layer* LayerOf(Core& core, AEGP_LayerH layer, std::string_view who) {
  return core.tracker.Find<Layer>(Kind::kLayer, layer, who);
}

A_Err GetEffectLayer(Core& core, PF_ProgPtr effect, AEGP_LayerH* layer) {
  const Effect* instance = core.Instance(effect, "AEGP_GetEffectLayer");
  if (instance == nullptr || layer == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *layer = instance->layerIsKnown ? core.LayerHandle(instance->OnLayer()) : nullptr;
  return A_Err_NONE;
}

A_Err GetNewEffectForEffect(Core& core, AEGP_PluginID id, PF_ProgPtr effect,
                            AEGP_EffectRefH* reference) {
  Effect* instance = core.Instance(effect, "AEGP_GetNewEffectForEffect");
  if (!core.IsPluginId(id, "AEGP_GetNewEffectForEffect") || instance == nullptr ||
      reference == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *reference = core.NewEffectRef(*instance);
  return A_Err_NONE;
}

A_Err GetLayerNumEffects(Core& core, AEGP_LayerH layer, A_long* count) {
  const Layer* found = LayerOf(core, layer, "AEGP_GetLayerNumEffects");
  if (found == nullptr || count == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *count = static_cast<A_long>(found->effects.size());
  return A_Err_NONE;
}

A_Err GetLayerEffectByIndex(Core& core, AEGP_PluginID id, AEGP_LayerH layer, AEGP_EffectIndex index,
                            AEGP_EffectRefH* reference) {
  const Layer* found = LayerOf(core, layer, "AEGP_GetLayerEffectByIndex");
  if (!core.IsPluginId(id, "AEGP_GetLayerEffectByIndex") || found == nullptr ||
      reference == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (index < 0 || static_cast<std::size_t>(index) >= found->effects.size()) {
    return PF_Err_INVALID_INDEX;
  }
  *reference = core.NewEffectRef(*found->effects[static_cast<std::size_t>(index)]);
  return A_Err_NONE;
}

A_Err GetInstalledKey(Core& core, AEGP_EffectRefH effect, AEGP_InstalledEffectKey* key) {
  const Effect* found = core.EffectOf(effect, "AEGP_GetInstalledKeyFromLayerEffect");
  if (found == nullptr || key == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *key = core.InstalledKey(found->matchName);
  return A_Err_NONE;
}

A_Err GetEffectFlags(Core& core, AEGP_EffectRefH effect, AEGP_EffectFlags* flags) {
  const Effect* found = core.EffectOf(effect, "AEGP_GetEffectFlags");
  if (found == nullptr || flags == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *flags = kAnotherFlag | (found->active ? AEGP_EffectFlags_ACTIVE : AEGP_EffectFlags_NONE);
  return A_Err_NONE;
}

/// Of the effects on this host, the plug-in alone can be called, and is for what companions send.
A_Err EffectCallGeneric(Core& core, AEGP_PluginID id, AEGP_EffectRefH effect, const A_Time* time,
                        PF_Cmd command, void* extra) {
  auto* renderer = dynamic_cast<RendererInstance*>(core.EffectOf(effect, "AEGP_EffectCallGeneric"));
  if (!core.IsPluginId(id, "AEGP_EffectCallGeneric")) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (renderer == nullptr || time == nullptr || command != PF_Cmd_COMPLETELY_GENERAL) {
    return core.Refuse("AEGP_EffectCallGeneric",
                       "no time, another effect than the renderer, or another command than "
                       "PF_Cmd_COMPLETELY_GENERAL");
  }
  return core.sendGeneralCommand(*renderer, extra);
}

/// As EffectCallGeneric; the command is the only one that this version can send.
A_Err EffectCallGeneric2(Core& core, AEGP_PluginID id, AEGP_EffectRefH effect, const A_Time* time,
                         void* extra) {
  return EffectCallGeneric(core, id, effect, time, PF_Cmd_COMPLETELY_GENERAL, extra);
}

A_Err DisposeEffect(Core& core, AEGP_EffectRefH effect) {
  return core.tracker.Remove(Kind::kEffectRef, effect, "AEGP_DisposeEffect")
             ? A_Err_NONE
             : PF_Err_BAD_CALLBACK_PARAM;
}

A_Err GetEffectMatchName(Core& core, AEGP_InstalledEffectKey key, A_char* name) {
  const std::string* found = core.MatchNameOf(key);
  if (found == nullptr || name == nullptr) {
    return core.Refuse("AEGP_GetEffectMatchName",
                       "key " + std::to_string(key) + "; a key of this host was expected");
  }
  PutName(*found, kLongestMatchName + 1, name);
  return A_Err_NONE;
}

template <class Call>
void FillSuite(AEGP_EffectSuite<Call>& suite) {
  suite.AEGP_GetLayerNumEffects = Operation<"AEGP_GetLayerNumEffects", GetLayerNumEffects>::Call;
  suite.AEGP_GetLayerEffectByIndex =
      Operation<"AEGP_GetLayerEffectByIndex", GetLayerEffectByIndex>::Call;
  suite.AEGP_GetInstalledKeyFromLayerEffect =
      Operation<"AEGP_GetInstalledKeyFromLayerEffect", GetInstalledKey>::Call;
  suite.AEGP_GetEffectFlags = Operation<"AEGP_GetEffectFlags", GetEffectFlags>::Call;
  suite.AEGP_DisposeEffect =
      Operation<"AEGP_DisposeEffect", DisposeEffect, FailurePoint::kAfterEffect>::Call;
  suite.AEGP_GetEffectMatchName = Operation<"AEGP_GetEffectMatchName", GetEffectMatchName>::Call;
}

}  // namespace

void AddEffectSuites(Core& core) {
  auto& fromEffect = core.suites.Add<AEGP_PFInterfaceSuite1>("AEGP PF Interface Suite", 1);
  fromEffect.AEGP_GetEffectLayer = Operation<"AEGP_GetEffectLayer", GetEffectLayer>::Call;
  fromEffect.AEGP_GetNewEffectForEffect =
      Operation<"AEGP_GetNewEffectForEffect", GetNewEffectForEffect>::Call;
  auto& version2 = core.suites.Add<AEGP_EffectSuite2>("AEGP Effect Suite", 2);
  FillSuite(version2);
  version2.AEGP_EffectCallGeneric = Operation<"AEGP_EffectCallGeneric", EffectCallGeneric2>::Call;
  auto& version3 = core.suites.Add<AEGP_EffectSuite3>("AEGP Effect Suite", 3);
  FillSuite(version3);
  version3.AEGP_EffectCallGeneric = Operation<"AEGP_EffectCallGeneric", EffectCallGeneric>::Call;
}

}  // namespace standin
