#include "sdk/aegp_suites.h"
#include "standin/core/operation.h"
#include "standin/suites/families.h"

namespace standin {
namespace {

// Issued with a subject, so that a look-up of the handle can tell it from none.
Core* PreferencesOf(Core& core, AEGP_PersistentBlobH blob, std::string_view who) {
  return core.tracker.Find<Core>(Kind::kPreferences, blob, who);
}

A_Err GetApplicationBlob(Core& core, AEGP_PersistentBlobH* blob) {
  if (blob == nullptr) {
    return core.Refuse("AEGP_GetApplicationBlob", "null");
  }
  *blob =
      core.HandleFor<AEGP_PersistentBlobH>(core.preferencesHandle, Kind::kPreferences, "", &core);
  return A_Err_NONE;
}

A_Err DoesKeyExist(Core& core, AEGP_PersistentBlobH blob, const A_char* section, const A_char* key,
                   A_Boolean* exists) {
  if (PreferencesOf(core, blob, "AEGP_DoesKeyExist") == nullptr || section == nullptr ||
      key == nullptr || exists == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  *exists = core.options.preferences.count({section, key}) != 0 ? 1 : 0;
  return A_Err_NONE;
}

A_Err SetLong(Core& core, AEGP_PersistentBlobH blob, const A_char* section, const A_char* key,
              A_long value) {
  if (PreferencesOf(core, blob, "AEGP_SetLong") == nullptr || section == nullptr ||
      key == nullptr) {
    return PF_Err_BAD_CALLBACK_PARAM;
  }
  core.options.preferences[{section, key}] = value;
  return A_Err_NONE;
}

}  // namespace

void AddPersistentDataSuite(Core& core) {
  auto& suite = core.suites.Add<AEGP_PersistentDataSuite3>("AEGP Persistent Data Suite", 3);
  suite.AEGP_GetApplicationBlob = Operation<"AEGP_GetApplicationBlob", GetApplicationBlob>::Call;
  suite.AEGP_DoesKeyExist = Operation<"AEGP_DoesKeyExist", DoesKeyExist>::Call;
  suite.AEGP_SetLong = Operation<"AEGP_SetLong", SetLong>::Call;
}

}  // namespace standin
