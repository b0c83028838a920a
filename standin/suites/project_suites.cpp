#include <cstring>
#include <iterator>

#include "sdk/aegp_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

A_Err GetNumProjects(Core& core, A_long* count) {
  if (count == nullptr) {
    return core.Refuse("AEGP_GetNumProjects", "null");
  }
  *count = core.project.open ? 1 : 0;
  return A_Err_NONE;
}

A_Err GetActiveItem(Core& core, AEGP_ItemH* item) {
  if (item == nullptr) {
    return core.Refuse("AEGP_GetActiveItem", "null");
  }
  Project& project = core.project;
  *item = nullptr;
  if (Composition* composition = project.ActiveComposition()) {
    *item = core.HandleFor<AEGP_ItemH>(composition->itemHandle, Kind::kItem, composition->name,
                                       composition);
  } else if (project.FootageIsActive()) {
    *item = core.HandleFor<AEGP_ItemH>(project.footageHandle, Kind::kItem, "footage", nullptr);
  }
  return A_Err_NONE;
}

bool IsFootage(const Core& core, AEGP_ItemH item) {
  return item != nullptr && item == core.project.footageHandle;
}

A_Err GetItemType(Core& core, AEGP_ItemH item, AEGP_ItemType* type) {
  const bool footage = IsFootage(core, item);
  if (type == nullptr ||
      (!footage && core.tracker.Find(Kind::kItem, item, "AEGP_GetItemType") == nullptr)) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *type = footage ? AEGP_ItemType_FOOTAGE : AEGP_ItemType_COMP;
  return A_Err_NONE;
}

A_Err GetCompFromItem(Core& core, AEGP_ItemH item, AEGP_CompH* comp) {
  if (comp == nullptr || IsFootage(core, item)) {
    return core.Refuse("AEGP_GetCompFromItem", "an item that is no composition");
  }
  auto* composition = core.tracker.Find<Composition>(Kind::kItem, item, "AEGP_GetCompFromItem");
  if (composition == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *comp = core.HandleFor<AEGP_CompH>(composition->handle, Kind::kComposition, composition->name,
                                     composition);
  return A_Err_NONE;
}

A_Err GetCompNumLayers(Core& core, AEGP_CompH comp, A_long* count) {
  const auto* composition =
      core.tracker.Find<Composition>(Kind::kComposition, comp, "AEGP_GetCompNumLayers");
  if (composition == nullptr || count == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *count = static_cast<A_long>(composition->layers.size());
  return A_Err_NONE;
}

A_Err GetCompLayerByIndex(Core& core, AEGP_CompH comp, A_long index, AEGP_LayerH* layer) {
  auto* composition =
      core.tracker.Find<Composition>(Kind::kComposition, comp, "AEGP_GetCompLayerByIndex");
  if (composition == nullptr || layer == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  if (index < 0 || static_cast<std::size_t>(index) >= composition->layers.size()) {
    return PF_Err_INVALID_INDEX;
  }
  *layer = core.LayerHandle(*std::next(composition->layers.begin(), index));
  return A_Err_NONE;
}

}  // namespace

void AddProjectSuites(Core& core) {
  auto& project = core.suites.Add<AEGP_ProjSuite5>("AEGP Proj Suite", 8);
  project.AEGP_GetNumProjects = Operation<"AEGP_GetNumProjects", GetNumProjects>::Call;
  auto& item = core.suites.Add<AEGP_ItemSuite6>("AEGP Item Suite", 10);
  item.AEGP_GetActiveItem = Operation<"AEGP_GetActiveItem", GetActiveItem>::Call;
  item.AEGP_GetItemType = Operation<"AEGP_GetItemType", GetItemType>::Call;
  auto& comp = core.suites.Add<AEGP_CompSuite4>("AEGP Comp Suite", 9);
  comp.AEGP_GetCompFromItem = Operation<"AEGP_GetCompFromItem", GetCompFromItem>::Call;
  auto& layer = core.suites.Add<AEGP_LayerSuite5>("AEGP Layer Suite", 11);
  layer.AEGP_GetCompNumLayers = Operation<"AEGP_GetCompNumLayers", GetCompNumLayers>::Call;
  layer.AEGP_GetCompLayerByIndex = Operation<"AEGP_GetCompLayerByIndex", GetCompLayerByIndex>::Call;
}

}  // namespace standin
