#pragma once

namespace standin {

struct Core;

/// Gives the host all its operations: puts every suite on its shelf and fills its callbacks in.
void AddAllOperations(Core& core);

// One family of operations each.

void AddBasicSuite(Core& core);
void AddHandleSuite(Core& core);
void AddWorldSuites(Core& core);
void AddUtilityCallbacks(Core& core);
void AddParameterOperations(Core& core);
void AddEffectSuites(Core& core);
void AddStreamSuites(Core& core);
void AddProjectSuites(Core& core);
void AddPersistentDataSuite(Core& core);
void AddUtilitySuites(Core& core);

}  // namespace standin
