#include "standin/suites/families.h"

namespace standin {

void AddAllOperations(Core& core) {
  AddBasicSuite(core);
  AddHandleSuite(core);
  AddWorldSuites(core);
  AddUtilityCallbacks(core);
  AddParameterOperations(core);
  AddEffectSuites(core);
  AddStreamSuites(core);
  AddProjectSuites(core);
  AddPersistentDataSuite(core);
  AddUtilitySuites(core);
}

}  // namespace standin
